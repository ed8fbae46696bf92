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
        const auto options = hal::optionsFrom({});
        QVERIFY(options.task == hal::Options::Task::Serve);
        QVERIFY(!options.monitor && !options.offender);
        QVERIFY(hal::defaultMonitor(true) == hal::MonitorGroup::Udev);
        QVERIFY(hal::defaultMonitor(false) == hal::MonitorGroup::Kernel);
    }

    void the_monitor_can_be_chosen_and_the_last_choice_counts()
    {
        QVERIFY(hal::optionsFrom({"--monitor=udev"}).monitor == hal::MonitorGroup::Udev);
        QVERIFY(hal::optionsFrom({"--monitor=udev", "--monitor=kernel"}).monitor
            == hal::MonitorGroup::Kernel);
        QVERIFY(!hal::optionsFrom({"--monitor=kernel", "--monitor=auto"}).monitor);
    }

    void list_and_help_are_tasks_and_help_wins()
    {
        QVERIFY(hal::optionsFrom({"--list", "--monitor=kernel"}).task == hal::Options::Task::List);
        QVERIFY(hal::optionsFrom({"--list", "--help"}).task == hal::Options::Task::Help);
        QVERIFY(hal::optionsFrom({"-h"}).task == hal::Options::Task::Help);
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
        const auto options = hal::optionsFrom({"--list", argument.constData()});
        QVERIFY(options.offender);
        QCOMPARE(text(*options.offender), QString::fromLatin1(argument));
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
