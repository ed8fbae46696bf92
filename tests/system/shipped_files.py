# SPDX-License-Identifier: MIT
"""Units and the like as they are shipped, and the programs that judge them."""
import configparser
import re
import subprocess
from pathlib import Path


def settings(file):
    """A unit, or another file of sections, keys and values."""
    parser = configparser.ConfigParser(strict=False, interpolation=None)
    parser.optionxform = str
    parser.read_string(Path(file).read_text(encoding="utf-8"))
    return parser


def run(*command):
    """What a program of the host says, errors included."""
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          timeout=60, check=False)


def exposure(unit):
    """What systemd thinks of a unit: the level, as text, and the switches that are off."""
    told = run("systemd-analyze", "security", "--offline=true", "--no-pager", str(unit)).stdout
    [level] = re.findall(r"Overall exposure level for %s: ([0-9.]+)" % re.escape(unit.name), told)
    return level, re.findall(r"(?m)^✗ (\w+)=", told)
