// SPDX-License-Identifier: MIT
#include "support/driver/compiler.h"

#include "support/driver/compiler_work.h"
#include "support/driver/source_archive.h"

#include <QFile>
#include <QFileInfo>

namespace {

constexpr int maxListing = 16 * 1024 * 1024;

/// What the tools read as their standard input, opened beforehand. By this name tar also finds out
/// by itself how the tarball is compressed, which it does not for a stream.
constexpr char standardInput[] = "--file=/proc/self/fd/0";

} // namespace

Compiler::Compiler(Compiler::ModemDriver driver, QThread *thread)
    : m_work(std::make_unique<Work>(std::move(driver)))
{
    Q_UNUSED(thread)
}

Compiler::~Compiler() = default;

void Compiler::backupDriver()
{
    const char *const step = "backupDriver";
    m_work->obstacle = BackupFailed;
    const QString refusal = m_work->begin();
    if (!refusal.isEmpty()) {
        m_work->complain(step, refusal);
        return;
    }
    m_work->note(step,
        QStringLiteral("driver %1 %2 for %3")
            .arg(m_work->driver.name, m_work->driver.version, m_work->tree.root()));
    if (m_work->backup.wasInterrupted()) {
        m_work->note(step, QStringLiteral("an earlier build was cut off: putting back its backup"));
        m_work->backedUp = true;
        restoreDriver();
        m_work->backedUp = false;
        if (m_work->backup.wasInterrupted()) {
            return;
        }
    }
    if (!m_work->backup.take()) {
        m_work->complain(step, QStringLiteral("the installed module cannot be kept"));
        return;
    }
    m_work->backedUp = true;
}

void Compiler::extractDriver()
{
    const char *const step = "extractDriver";
    const ModemDriver &driver = m_work->driver;
    if (!m_work->backedUp) {
        return;
    }
    m_work->obstacle = SourcesRefused;
    const FileDescriptor tarball = m_work->openTrusted(step, driver.tarball);
    if (!tarball.isOpen()) {
        return;
    }
    const ToolResult listing = m_work->run(step, QStringLiteral("tar"),
        {QStringLiteral("--list"), QLatin1String(standardInput),
            QStringLiteral("--quoting-style=escape")},
        tarball.get(), maxListing);
    if (!listing.ok()) {
        return;
    }
    const ArchiveShape shape = judgeListing(listing.output, m_work->plan.topFolder);
    QString refusal = shape.refusal;
    if (refusal.isEmpty()) {
        refusal = makePrivateFolder(driver.sourceDir);
    }
    if (refusal.isEmpty()) {
        const ToolResult unpacked = m_work->run(step, QStringLiteral("tar"),
            {QStringLiteral("--extract"), QLatin1String(standardInput),
                QStringLiteral("--directory=") + driver.sourceDir,
                QStringLiteral("--strip-components=%1").arg(shape.topDepth),
                QStringLiteral("--no-same-owner"), QStringLiteral("--no-same-permissions")},
            tarball.get());
        if (!unpacked.ok()) {
            return;
        }
        refusal = judgeTree(driver.sourceDir);
    }
    if (!refusal.isEmpty()) {
        m_work->complain(step, QStringLiteral("%1 is refused: %2").arg(driver.tarball, refusal));
        return;
    }
    m_work->obstacle = 0;
}

void Compiler::patchDriver()
{
    const char *const step = "patchDriver";
    if (m_work->obstacle != 0) {
        return;
    }
    m_work->obstacle = PatchFailed;
    const QString patchFile = m_work->plan.patchFile;
    if (QFileInfo(patchFile).isSymLink() || QFile::exists(patchFile)) {
        const FileDescriptor patch = m_work->openTrusted(step, patchFile);
        if (!patch.isOpen()) {
            return;
        }
        m_work->note(step, QStringLiteral("applying ") + patchFile);
        const ToolResult patched = m_work->run(step, QStringLiteral("patch"),
            {QStringLiteral("--directory=") + m_work->driver.sourceDir, QStringLiteral("--strip=1"),
                QStringLiteral("--batch"), QStringLiteral("--forward"),
                QStringLiteral("--no-backup-if-mismatch")},
            patch.get());
        const QString refusal = judgeTree(m_work->driver.sourceDir);
        if (!refusal.isEmpty()) {
            m_work->complain(step, QStringLiteral("%1 is refused: %2").arg(patchFile, refusal));
        }
        if (!patched.ok() || !refusal.isEmpty()) {
            return;
        }
    }
    if (m_work->driver.flag && !m_work->adaptSources(step)) {
        return;
    }
    m_work->obstacle = 0;
}

int Compiler::compileDriver()
{
    const char *const step = "compileDriver";
    if (m_work->obstacle != 0) {
        return m_work->obstacle;
    }
    if (findTool(QStringLiteral("make"), m_work->plan.install.environment).isEmpty()) {
        m_work->complain(step, QStringLiteral("there is no make: install the package make"));
        return MakeMissing;
    }
    if (!QFile::exists(m_work->tree.buildFolder() + QStringLiteral("/Makefile"))) {
        const QString release = QFileInfo(m_work->tree.root()).fileName();
        m_work->complain(step,
            QStringLiteral("the running kernel's headers are missing: install the package %1")
                .arg(headersPackages(release)));
        return HeadersMissing;
    }
    for (const MakeCommand &command : m_work->plan.build) {
        const int code = m_work->make(step, command);
        if (code != 0) {
            return code;
        }
    }
    return 0;
}

int Compiler::installDriver()
{
    const char *const step = "installDriver";
    if (!m_work->backup.beginInstall({}) || !m_work->makeStaging()) {
        m_work->complain(step, QStringLiteral("the install cannot be prepared"));
        return BackupFailed;
    }
    int code = m_work->make(step, m_work->plan.install);
    if (code == 0) {
        code = m_work->publish(step);
    }
    if (code == 0) {
        code = m_work->checkModule(step);
    }
    if (code == 0) {
        m_work->backup.conclude();
        removeTree(m_work->driver.sourceDir);
    }
    return code;
}

void Compiler::restoreDriver()
{
    const char *const step = "restoreDriver";
    if (!m_work->backedUp) {
        return; // nothing was kept, and so nothing was changed
    }
    m_work->note(step, QStringLiteral("putting back what was installed before"));
    if (!m_work->backup.putBack()) {
        m_work->complain(
            step, QStringLiteral("the former module could not be put back completely"));
        return;
    }
    m_work->depmod(step);
    m_work->backup.conclude();
}
