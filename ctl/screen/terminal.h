// SPDX-License-Identifier: MIT
// Where the words go: standard output and standard error, with or without colour.
#pragma once

#include "ctl/screen/exit_code.h"

#include <QString>

struct Failure;

enum class Form
{
    Human,
    Terse, ///< key=value lines or tab-separated rows, never translated
    Json,
};

enum class Tone
{
    Plain,
    Strong,
    Good,
    Doubtful,
    Bad,
    Faint,
};

/// How this process prints; decided once from the command line, the environment and the terminal.
struct Terminal
{
    Form form = Form::Human;
    bool isTerminal = false; ///< standard output is a terminal that understands cursor commands
    bool hasColour = false;
    bool hasGlyphs = true; ///< the locale's character set is UTF-8

    /// Columns for paragraphs: the terminal's, at most 100; 80 when there is none.
    int width() const;
    /// Rows of the terminal; 24 when there is none.
    int height() const;

    /// @p text in the tone's colour, or as it is without colours.
    QString toned(const QString &text, Tone tone) const;

    /// Prints a line on standard output at once, in the locale's character set. When that fails,
    /// the process says so and ends with the status 1.
    void line(const QString &text = QString()) const;
    /// Prints a wrapped paragraph on standard output; @p indent applies from its second line on.
    void paragraph(const QString &text, int indent = 0) const;
    /// Prints a wrapped note on standard error.
    void note(const QString &text) const;
    /// Prints "norvixctl: text" on standard error and gives the status back.
    ExitCode fail(ExitCode code, const QString &text) const;
    /// The same for a failure of the library.
    ExitCode fail(const Failure &failure) const;
};

/// @p when is "auto", "always" or "never". In the automatic case colours need a terminal, a TERM
/// that is not "dumb" and no NO_COLOR in the environment.
Terminal makeTerminal(const QString &when);
