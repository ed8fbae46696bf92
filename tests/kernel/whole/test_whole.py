# SPDX-License-Identifier: MIT
"""norvix in a whole system: real sleep, and the distribution's own services beside it. Run by hand:
/usr/bin/python3 -B -m pytest -p no:cacheprovider -s tests/kernel/whole
NORVIX_CLEAN_RELEASE=13 takes Debian 13 and its kernel."""
import pytest


def test_a_connection_ends_before_sleep_and_is_back_after_it(tell):
    tell("sleeps", "sleeps_without_polkit")


def test_a_connection_lives_beside_the_distributions_own_network_services(tell):
    tell("lives_beside_resolved", "lives_beside_networkd", "lives_beside_networkmanager")


def test_a_mobile_connection_of_networkmanagers_and_ours_live_beside_each_other(tell):
    tell("lives_beside_a_mobile_connection")


def test_a_modem_that_is_restarted_after_a_loss_connects(tell):
    tell("restarts_the_modem_after_a_loss")


@pytest.mark.usefixtures("window")
def test_somebody_gets_a_new_modem_onto_the_line_with_the_window_alone(tell):
    """NORVIX_PICTURES=FOLDER keeps pictures of the assistant's last page and of the window after it."""
    tell(program="window_story.py")


def test_a_link_is_back_about_as_soon_as_pppds_own_and_sooner_than_networkmanagers(tell):
    """Half an hour; NORVIX_MOMENTS=5 makes fewer moments of it."""
    tell("compares")
