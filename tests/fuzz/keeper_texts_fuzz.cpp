// SPDX-License-Identifier: MIT
// Every text that the keeper reads: logs, files of the kernel and of pppd, its own.
#include "keeper/daemon_log.h"
#include "keeper/history/schema.h"
#include "keeper/line/line_quality.h"
#include "keeper/line/loss_judge.h"
#include "keeper/memory_file.h"
#include "keeper/settings.h"
#include "keeper/system_facts.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray text(reinterpret_cast<const char *>(data), int(size));
    keeper::causeInLog(text);
    keeper::unheardInLog(text, 0, "usb_device_572_cb00_1", true);
    keeper::cellsReceived(text);
    keeper::linkFileFrom(text);
    keeper::versionInHeader(text);
    keeper::lineQuality([&text](const char *) { return std::optional<QByteArray>(text); });
    keeper::Stored::from(text);
    keeper::settingsFrom(text);
    return 0;
}
