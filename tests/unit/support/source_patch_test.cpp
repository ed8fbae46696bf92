// SPDX-License-Identifier: MIT
// Adapting old makefiles and sources.
#include "support/driver/source_patch.h"
#include "test_table.h"

#include <QTest>
#include <ctime>

namespace {

const QString buildFolder = QStringLiteral("/lib/modules/6.1.0-1-amd64/build");

} // namespace

class SourcePatchTest : public QObject
{
    Q_OBJECT

private slots:
    void makefilesAreAdapted_data()
    {
        const auto row = table<QByteArray, QByteArray>("before", "after");
        const auto kept = [&row](const char *name, const char *text) { row(name, text, text); };

        row("SUBDIRS on a command", "\t$(MAKE) -C $(KDIR) SUBDIRS=$(PWD) modules",
            "\t$(MAKE) -C $(KDIR) M=$(PWD) modules");
        row("SUBDIRS on a continued line", "\tmake -C $K \\\n\t  SUBDIRS=`pwd` modules",
            "\tmake -C $K \\\n\t  M=`pwd` modules");
        kept("automake's list of folders", "SUBDIRS=src doc\nSUBDIRS = src\n");
        kept("another variable", "\tmake MY_SUBDIRS=x NOSUBDIRS=y");

        row("plain source folder", "KDIR = /usr/src/linux\n",
            "KDIR = /lib/modules/6.1.0-1-amd64/build\n");
        row("source folder with a release", "KDIR=/usr/src/linux-2.6.18-4-686\n",
            "KDIR=/lib/modules/6.1.0-1-amd64/build\n");
        row("source folder with uname", "KDIR:=/usr/src/linux-$(shell uname -r)/\n",
            "KDIR:=/lib/modules/6.1.0-1-amd64/build/\n");
        row("source folder with backticks", "\tmake -C /usr/src/linux-headers-`uname -r` modules",
            "\tmake -C /lib/modules/6.1.0-1-amd64/build modules");
        row("kernels folder", "KDIR=/usr/src/kernels/$(KVER)-i686",
            "KDIR=/lib/modules/6.1.0-1-amd64/build");
        row("headers below it", "CFLAGS += -I/usr/src/linux/include\n",
            "CFLAGS += -I/lib/modules/6.1.0-1-amd64/build/include\n");
        row("build folder of a fixed release", "KDIR=/lib/modules/2.6.18-4-686/build",
            "KDIR=/lib/modules/6.1.0-1-amd64/build");
        row("the same by its real place", "KDIR=/usr/lib/modules/2.6.18-4-686/build",
            "KDIR=/lib/modules/6.1.0-1-amd64/build");
        kept("build folder of the running kernel", "KDIR ?= /lib/modules/$(shell uname -r)/build");
        kept("another folder of that beginning", "X=/usr/src/linuxthreads/y");

        row("a recipe that installs", "\tcp a.ko /lib/modules/`uname -r`/extra/",
            "\tcp a.ko $(INSTALL_MOD_PATH)/lib/modules/`uname -r`/extra/");
        row("an install folder", "MODDIR=/lib/modules/$(KVER)/kernel/drivers\n",
            "MODDIR=$(INSTALL_MOD_PATH)/lib/modules/$(KVER)/kernel/drivers\n");
        row("an install folder by its real place", "MODDIR=/usr/lib/modules/$(KVER)/extra\n",
            "MODDIR=$(INSTALL_MOD_PATH)/lib/modules/$(KVER)/extra\n");
        kept("the root of the modules", "MODROOT=/lib/modules/$(KVER)\n");
        kept("an install that can be redirected",
            "\tcp a.ko $(INSTALL_MOD_PATH)/lib/modules/$(KVER)/extra\n"
            "\tcp a.ko ${DESTDIR}/lib/modules/$(KVER)/extra\n"
            "\tcp a.ko $(INSTALL_MOD_PATH)/usr/lib/modules/$(KVER)/extra\n");
        kept("bytes of any kind", "# \xff\xfe \xc3\xa9\r\nall:\n");
        kept("nothing", "");
    }

    void makefilesAreAdapted()
    {
        QFETCH(QByteArray, before);
        const AdaptedText adapted = adaptMakefile(before, buildFolder);
        QTEST(adapted.text, "after");
        QCOMPARE(adapted.changes.isEmpty(), adapted.text == before);
        // A second run finds nothing to do.
        QCOMPARE(adaptMakefile(adapted.text, buildFolder).text, adapted.text);
    }

    void sourcesAreAdapted_data()
    {
        const auto row = table<QByteArray, QByteArray>("before", "after");
        row("a header that has gone", "a\n#include <linux/config.h>\nb", "a\n\nb");
        row("a header that has moved", "# include <asm/uaccess.h>", "# include <linux/uaccess.h>");
        row("attributes", "static int __devinit probe(void)", "static int probe(void)");
        row("data attribute", "struct x y __devinitdata = {", "struct x y = {");
        row("exit pointer", ".remove = __devexit_p(gone),", ".remove = gone,");
        row("exit attribute", "static void __devexit gone(void)", "static void gone(void)");
        row("flag", "SA_SHIRQ | MY_SA_SHIRQ", "IRQF_SHARED | MY_SA_SHIRQ");
        row("functions", "usb_buffer_alloc(a); my_usb_buffer_free(b);",
            "usb_alloc_coherent(a); my_usb_buffer_free(b);");
        row("semaphore", "init_MUTEX(&dev->lock);", "sema_init(&dev->lock, 1);");
        row("nothing to do", "int x; /* \xe9 */\n", "int x; /* \xe9 */\n");
    }

    void sourcesAreAdapted()
    {
        QFETCH(QByteArray, before);
        const AdaptedText adapted = adaptSource(before);
        QTEST(adapted.text, "after");
        QCOMPARE(adapted.changes.isEmpty(), adapted.text == before);
    }

    void eachChangeSaysWhereAndWhat()
    {
        const AdaptedText adapted
            = adaptMakefile("all:\n\tmake -C $K SUBDIRS=. modules\n", buildFolder);
        QCOMPARE(adapted.changes,
            QStringList{QStringLiteral(
                "line 2: \"make -C $K SUBDIRS=. modules\" -> \"make -C $K M=. modules\"")});
    }

    void aLineOfAMegabyteIsAdaptedInTime_data()
    {
        const auto row = table<QByteArray>("repeated");
        for (const char *text : {"/lib/modules/$(", "/lib/modules/${", "$(/lib/modules/$(a)",
                 "/usr/src/linux-$(", "/usr/src/kernels/a`", "/usr/src/linux-a+", " SUBDIRS="}) {
            row(text, QByteArray(text));
        }
    }

    void aLineOfAMegabyteIsAdaptedInTime()
    {
        QFETCH(QByteArray, repeated);
        const QByteArray line = repeated.repeated((1 << 20) / repeated.size());
        const std::clock_t start = std::clock(); // of the processor, which other programs share
        adaptMakefile(line, buildFolder);
        // A tenth of it is usual; with each path looked at up to the line's end it takes minutes.
        QVERIFY(double(std::clock() - start) / CLOCKS_PER_SEC < 20);
    }

    void makefilesAndSourcesAreKnownByName()
    {
        for (const char *name : {"Makefile", "makefile", "GNUmakefile", "Kbuild", "rules.mk"}) {
            QVERIFY2(isMakefile(QString::fromLatin1(name)), name);
        }
        for (const char *name : {"Makefile.am", "README", "make.c", "MAKEFILE"}) {
            QVERIFY2(!isMakefile(QString::fromLatin1(name)), name);
        }
        QVERIFY(isSource(QStringLiteral("a.c")) && isSource(QStringLiteral("b.h")));
        QVERIFY(!isSource(QStringLiteral("a.o")) && !isSource(QStringLiteral("a.c.bak")));
    }
};

QTEST_APPLESS_MAIN(SourcePatchTest)
#include "source_patch_test.moc"
