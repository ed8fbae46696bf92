// SPDX-License-Identifier: MIT
// Tests for hal/options: the command line of norvix-hald.
#include "hal/options.h"

#include "hal_test.h"
#include "test_table.h"

class HalOptionsTest : public QObject
{
    Q_OBJECT

private slots:
    void without_arguments_it_serves_and_chooses_the_monitor_itself()
    {
        std::string offender;
        const auto options = hal::optionsFrom({}, &offender);
        QVERIFY(options && options->task == hal::Options::Task::Serve && !options->monitor);
        QVERIFY(hal::defaultMonitor(true) == hal::MonitorGroup::Udev);
        QVERIFY(hal::defaultMonitor(false) == hal::MonitorGroup::Kernel);
    }

    void the_monitor_can_be_chosen_and_the_last_choice_counts()
    {
        std::string offender;
        QVERIFY(
            hal::optionsFrom({"--monitor=udev"}, &offender)->monitor == hal::MonitorGroup::Udev);
        QVERIFY(hal::optionsFrom({"--monitor=udev", "--monitor=kernel"}, &offender)->monitor
            == hal::MonitorGroup::Kernel);
        QVERIFY(!hal::optionsFrom({"--monitor=kernel", "--monitor=auto"}, &offender)->monitor);
    }

    void list_and_help_are_tasks_and_help_wins()
    {
        std::string offender;
        QVERIFY(hal::optionsFrom({"--list", "--monitor=kernel"}, &offender)->task
            == hal::Options::Task::List);
        QVERIFY(
            hal::optionsFrom({"--list", "--help"}, &offender)->task == hal::Options::Task::Help);
        QVERIFY(hal::optionsFrom({"-h"}, &offender)->task == hal::Options::Task::Help);
    }

    void what_is_not_understood_is_named_data()
    {
        const auto row = table<QByteArray>("argument");
        for (const char *argument :
            {"--monitor", "--monitor=", "--monitor=udevd", "list", "-x", "", "--list=yes"}) {
            row(argument, QByteArray(argument));
        }
    }
    void what_is_not_understood_is_named()
    {
        QFETCH(QByteArray, argument);
        std::string offender = "untouched";
        QVERIFY(!hal::optionsFrom({"--list", argument.constData()}, &offender));
        QCOMPARE(text(offender), QString::fromLatin1(argument));
    }

    void the_help_names_every_option()
    {
        for (const char *option :
            {"--monitor=udev", "--monitor=kernel", "--monitor=auto", "--list", "--help"}) {
            QVERIFY2(hal::helpText().find(option) != std::string_view::npos, option);
        }
    }
};

QTEST_APPLESS_MAIN(HalOptionsTest)
#include "hal_options_test.moc"
