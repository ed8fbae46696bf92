# SPDX-License-Identifier: MIT
"""A keeper, or another name on the bus, that answers what it is told to, or nothing."""
from jeepney import HeaderFields, new_error, new_method_return

from lab.machine import keeper_service
from lab.machine.played_service import PlayedService

CONNECTED = {
    "State": ("s", "connected"), "Wanted": ("b", True), "Keep": ("b", True), "Reason": ("s", ""),
    "Since": ("x", 1763800000), "NextAttempt": ("x", 0), "Attempts": ("u", 0),
    "ForeignLinks": ("as", []), "History": ("s", "ok"), "LimitReached": ("b", False)}


class FakeService(PlayedService):
    """answers: by a method's name the signature and the values of its reply, or an error's name and
    text, or nothing, for a method that hangs. All others are refused as unknown."""

    def __init__(self, sock, uid):
        self.answers = {}
        self.asked = []
        super().__init__(sock, uid)

    @classmethod
    def start(cls, machine, name, **answers):
        service = machine.client(kind=cls)
        service.NAME = name
        service.answers.update(answers)
        service.take_name()
        return service

    def _answer(self, message):
        member = message.header.fields[HeaderFields.member]
        self.asked.append((member, *message.body))
        unknown = ("org.freedesktop.DBus.Error.UnknownMethod", "no such method")
        answer = self.answers.get(member, unknown)
        if answer is None:
            return
        kind, *values = answer
        if "." in kind:
            self.send(new_error(message, kind, "s", tuple(values)))
        else:
            self.send(new_method_return(message, kind, tuple(values)))


def start_keeper(machine, **answers):
    """A keeper that is connected and has nothing to tell but what is given."""
    usual = {"GetAll": ("a{sv}", CONNECTED), "GetPlan": ("a{sv}", {"limit": ("t", 0),
                                                                  "billing_day": ("u", 1)})}
    usual.update({name: ("aa{sv}", []) for name in ("GetSessions", "GetAttempts", "GetDays",
                                                    "GetMonths", "GetLineQuality")})
    return FakeService.start(machine, keeper_service.NAME, **{**usual, **answers})
