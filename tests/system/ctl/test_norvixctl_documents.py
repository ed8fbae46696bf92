# SPDX-License-Identifier: MIT
"""Manual pages, completion and translation, compared with what they describe."""
import json
import os
import re
import subprocess
import xml.etree.ElementTree as ElementTree

import pytest
from norvixctl import PROGRAM, Ctl

from lab.machine.private_machine import BUILD, REPOSITORY

PAGES = ["norvixctl.1", "norvix-daemon.8", "norvix-daemon.ini.5", "com.norvix.Daemon.7"]
CTL = BUILD / "bin/norvixctl"


def page(name):
    return (REPOSITORY / "docs" / name).read_text(encoding="utf-8").replace("\\-", "-")


def section(text, heading):
    """The lines of a page from a heading to the next of the same kind."""
    return re.split(r"^\.SH ", text.split(".SH %s\n" % heading)[1], flags=re.MULTILINE)[0]


def commands():
    machine_readable = subprocess.run([CTL, "help", "--json"], check=True, capture_output=True,
                                      env={**os.environ, "LANG": "C.UTF-8"})
    return json.loads(machine_readable.stdout)["commands"]


def options_described(text):
    """The options that lead a paragraph: (letter or None, name, value's name or None)."""
    found = set()
    for line in re.findall(r"^\.TP\n(.*)$", text, re.MULTILINE):
        words = re.sub(r'\\f.|"|^\.\w+ ', " ", line).replace(",", " ").split()
        names = [word for word in words if word.startswith("--")]
        if names:
            letters = [word[1] for word in words if re.fullmatch("-[a-z]", word)]
            values = [word for word in words if word.isupper() and not word.startswith("-")]
            found.add((letters[0] if letters else None, names[0][2:], values[0] if values else None))
    return found


@pytest.mark.parametrize("name", PAGES)
def test_the_pages_are_well_formed(name):
    result = subprocess.run(["man", "--warnings", "-l", "-E", "UTF-8", "-Tutf8", "-Z",
                             REPOSITORY / "docs" / name], capture_output=True, check=True,
                            env={**os.environ, "LC_ALL": "C.UTF-8"})
    assert result.stderr == b""


def test_the_manual_has_every_command_and_option_and_no_others():
    text = page("norvixctl.1")
    parts = re.split(r"^\.SS ", section(text, "COMMANDS"), flags=re.MULTILINE)[1:]
    described = {part.split("\n", 1)[0]: options_described(part) for part in parts}
    common = options_described(section(text, "OPTIONS OF ALL COMMANDS"))
    reading = options_described(section(text, "OPTIONS OF READING COMMANDS"))
    table = {}
    for command in commands():
        heading = (command["command"] + " " + command["arguments"]).strip()
        table[heading] = {(option.get("letter"), option["name"], option.get("value"))
                          for option in command["options"]} - common
        if command["reading"]:
            assert reading <= table[heading]
            table[heading] -= reading
            assert re.search(r'(^|[" ])%s($|[" ,])' % command["command"],
                             section(text, "OPTIONS OF READING COMMANDS"), re.MULTILINE)
    assert described == table


def test_the_manual_has_every_exit_status():
    header = (REPOSITORY / "ctl/screen/exit_code.h").read_text(encoding="utf-8")
    statuses = re.findall(r"^    \w+ = (\d+),", header, re.MULTILINE)
    assert re.findall(r"^\.TP\n\.B (\d+)$", section(page("norvixctl.1"), "EXIT STATUS"),
                      re.MULTILINE) == statuses


@pytest.mark.parametrize("name", [*PAGES, "norvix-hald.8"])
def test_the_pages_have_a_date(name):
    assert re.search(r'^\.TH \S+ \d "\d{4}-\d\d-\d\d" ', page(name), re.MULTILINE)


def test_the_manual_names_the_schema_where_it_is_installed():
    assert "/usr/share/norvix/norvixctl.schema.json" in page("norvixctl.1")


def test_the_settings_page_has_every_key_that_the_daemon_uses():
    used = set()
    for room in ("daemon", "connection", "driver", "network"):
        for file in (REPOSITORY / room).glob("*.cpp"):
            used.update(re.findall(r'(?:read|write)Setting(?:Text)?\(\s*\S+?,\s*"(\w+)"',
                                   file.read_text(encoding="utf-8")))
    described = re.findall(r"^\.TP\n\.B (\w+)$", section(page("norvix-daemon.ini.5"), "KEYS"),
                           re.MULTILINE)
    assert set(described) == used and len(described) == len(used)


def test_the_daemons_page_has_every_switch():
    main = (REPOSITORY / "daemon/main.cpp").read_text(encoding="utf-8")
    switches = set(re.findall(r'"(--?[a-z]+)"', main))
    described = set(re.findall(r"(?<![\w-])--?[a-z]+", section(page("norvix-daemon.8"), "SWITCHES")))
    assert described == switches


# ---- completion

def complete_in_bash(words):
    script = """
        source <("$1" completion bash); shift
        COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _norvixctl; printf '%s\\n' "${COMPREPLY[@]}"
    """
    result = subprocess.run(["bash", "-c", script, "bash", CTL, "norvixctl", *words],
                            capture_output=True, check=True, text=True)
    assert result.stderr == ""
    return result.stdout.split()


def complete_in_zsh(words):
    # compadd is the shell's own; here it says what it was given and what fits.
    script = """
        compadd() {
            local before=
            [[ $1 == -P ]] && { before=$2; shift 2 }
            shift; print -l -- ${(M)${@/#/$before}:#$words[CURRENT]*}
        }
        program=$1; shift
        words=("$@"); CURRENT=$#
        eval "$($program completion zsh)"
    """
    result = subprocess.run(["zsh", "-fc", script, "zsh", CTL, "norvixctl", *words],
                            capture_output=True, check=True, text=True)
    assert result.stderr == ""
    return result.stdout.split()


@pytest.mark.parametrize("complete", [complete_in_bash, complete_in_zsh])
@pytest.mark.parametrize("words, expected", [
    (["st"], ["status"]), (["mod"], ["modem"]), (["line", ""], None), (["line", "s"], ["show", "set"]),
    (["line", "set", "--v"], ["--vpi", "--vci", "--version"]),
    (["line", "set", "--protocol", ""], ["PPPoE", "PPPoA"]),
    (["line", "set", "--vpi", ""], []), (["autoconnect", "o"], ["on", "off"]),
    (["completion", ""], None), (["status", "--j"], ["--json"]), (["connect", "--j"], []),
    (["--color", "n"], ["never"]), (["help", "mon"], ["monitor"]),
])
def test_shells_complete_commands_options_and_values(complete, words, expected):
    found = complete(words)
    if expected is None:
        assert found
    else:
        assert sorted(found) == sorted(expected)


def test_a_value_behind_its_options_sign_is_completed():
    """For bash the sign is a word of its own."""
    assert complete_in_bash(["--color", "="]) == ["auto", "always", "never"]
    assert complete_in_bash(["--color", "=", "n"]) == ["never"]
    assert complete_in_bash(["line", "set", "--protocol", "=", "PPPoE", "--vp"]) == ["--vpi"]
    assert complete_in_zsh(["--color="]) == ["--color=auto", "--color=always", "--color=never"]
    assert complete_in_zsh(["--color=n"]) == ["--color=never"]


def test_the_script_for_bash_is_one_that_a_judge_of_shell_scripts_accepts():
    script = subprocess.run([CTL, "completion", "bash"], capture_output=True, check=True).stdout
    judged = subprocess.run(["shellcheck", "--shell=bash", "-"], input=script, capture_output=True,
                            check=False)
    assert (judged.returncode, judged.stdout.decode()) == (0, "")


@pytest.mark.parametrize("complete", [complete_in_bash, complete_in_zsh])
def test_an_options_value_is_no_command(complete):
    assert complete(["--color", "never", "sta"]) == ["status"]
    assert complete(["connect", "-t", "5", "--wa"]) == ["--wait"]


def test_every_command_and_option_can_be_completed():
    for command in commands():
        words = command["command"].split()
        for number, word in enumerate(words):
            assert word in complete_in_bash(words[:number] + [word[:1]])
        found = complete_in_bash(words + ["--"])
        assert sorted(found) == sorted("--" + option["name"] for option in command["options"])


# ---- translation

@pytest.mark.parametrize("room, name", [
    ("client", "client"), ("ctl", "norvixctl"), ("desktop", "norvix-desktop")])
def test_everything_is_translated_to_german(tmp_path, room, name):
    copy = tmp_path / "de.ts"
    copy.write_bytes((REPOSITORY / room / "translations" / (name + "_de.ts")).read_bytes())
    known = set(ElementTree.parse(copy).getroot().iter("message"))
    subprocess.run(["lupdate", "-silent", "-no-obsolete", "-locations", "none",
                    REPOSITORY / room, "-ts", copy], check=True, capture_output=True)
    messages = list(ElementTree.parse(copy).getroot().iter("message"))
    assert len(messages) == len(known)  # nothing is left of what is not said any more
    for message in messages:
        source, translation = message.findtext("source"), message.find("translation")
        assert translation.get("type") is None, "not translated: " + source
        for text in [form.text for form in translation.iter("numerusform")] or [translation.text]:
            assert text, source
            assert sorted(re.findall(r"%\d|%n", text)) == sorted(re.findall(r"%\d|%n", source)), source


def test_every_number_has_its_english_plural():
    for room, name in (("ctl", "norvixctl"), ("desktop", "norvix-desktop")):
        folder = REPOSITORY / room / "translations"
        for language in ("de", "en"):
            tree = ElementTree.parse(folder / ("%s_%s.ts" % (name, language)))
            found = {message.findtext("source") for message in tree.getroot().iter("message")
                     if message.get("numerus")}
            if language == "de":
                wanted = found
        assert found == wanted


def test_the_library_names_no_command():
    for file in sorted((REPOSITORY / "client").glob("*.cpp")):
        text = file.read_text(encoding="utf-8")
        # The one that is the content of a file.
        text = text.replace('# Set it with \\"norvixctl account set\\".', "")
        assert re.findall(r"norvixctl|sudo|systemctl|apt install", text) == [], file.name


def test_the_program_in_the_machine_is_the_one_that_was_checked(machine):
    assert machine.path(PROGRAM).read_bytes() == CTL.read_bytes()
    assert Ctl(machine)("--version").stdout.startswith("norvixctl ")


# ---- pages for the user

GUIDES = ["README.md", "docs/first-connection.md", "docs/pppoe-and-pppoa.md", "docs/driver-build.md",
          "docs/keeping-the-connection.md", "docs/troubleshooting.md"]


def calls_in(text):
    """The calls of norvixctl that a page shows, each as a list of words."""
    shown = re.findall(r"`((?:sudo )?norvixctl [^`]*)`", text)
    for block in re.findall(r"^```sh\n(.*?)^```", text, re.MULTILINE | re.DOTALL):
        shown += [line.split("#")[0] for line in block.splitlines()]
    calls = [call.replace("sudo ", "").split() for call in shown]
    return [call[1:] for call in calls if call[:1] == ["norvixctl"]]


@pytest.mark.parametrize("name", GUIDES)
def test_the_pages_show_only_commands_and_options_that_exist(name):
    table = {tuple(command["command"].split()): command for command in commands()}
    calls = calls_in((REPOSITORY / name).read_text(encoding="utf-8"))
    assert calls or name == "docs/troubleshooting.md"
    for call in calls:
        known = next((table[tuple(call[:length])] for length in (2, 1)
                      if tuple(call[:length]) in table), None)
        assert known, call
        options = {"--" + option["name"] for option in known["options"]} | {"--json", "--terse"}
        assert {word for word in call if word.startswith("--")} <= options, call


@pytest.mark.parametrize("name", GUIDES)
def test_the_pages_link_to_what_is_there(name):
    page_of = REPOSITORY / name
    targets = re.findall(r"\]\(([^)#:]+)\)", page_of.read_text(encoding="utf-8"))
    assert [target for target in targets if not (page_of.parent / target).exists()] == []


@pytest.mark.parametrize("front", ["install", "demo", "check"])
def test_the_fronts_have_the_options_that_the_pages_show(front):
    told = subprocess.run([REPOSITORY / front, "--help"], check=True, capture_output=True,
                          text=True).stdout
    for name in GUIDES + ["CONTRIBUTING.md"]:
        text = (REPOSITORY / name).read_text(encoding="utf-8")
        for shown in re.findall(r"\./%s((?: --[a-z-]+)*)" % front, text):
            assert all(option in told for option in shown.split()), shown
