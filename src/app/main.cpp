// The desktop program.
#include "app/Application.h"
#include "app/Display.h"
#include "app/ProgramArguments.h"
#include "fs/MountKeeper.h"
#include "fs/ProcessGuards.h"
#include "platform/RunningApplication.h"

#include <QFile>

#include <cstdio>
#include <cstdlib>
#include <exception>

namespace nimbrel {

namespace {

QStringList textsOf(int count, const char *const *arguments)
{
    QStringList texts;
    for (int i = 0; i < count; ++i)
        texts.append(QFile::decodeName(arguments[i]));
    return texts;
}

int fail(const QString &text)
{
    std::fprintf(stderr, "nimbrel: %s\n", qUtf8Printable(text));
    return EXIT_FAILURE;
}

int run(int count, char **texts)
{
    const ProgramArguments arguments = ProgramArguments::of(textsOf(count, texts));
    if (!arguments.error.isEmpty()) {
        (void)fail(arguments.error + QStringLiteral(" See nimbrel --help."));
        return 2;
    }
    if (!arguments.answer.isEmpty())
        return std::fputs(qUtf8Printable(arguments.answer), stdout) < 0 ? EXIT_FAILURE : 0;

    MountKeeper keeper; // its child is a copy of this process: before threads and secrets
    prepareToServe();
    using runningApplication::HandOver;
    switch (runningApplication::handOver(arguments.request)) {
    case HandOver::Done:
        return 0;
    case HandOver::Failed:
        return fail(QStringLiteral("Nimbrel is running and doesn't answer. End it, then try "
                                   "again."));
    case HandOver::NobodyThere:
        break;
    }
    if (!isDisplayThere())
        return fail(QStringLiteral("There is no display. At a terminal, nimbrelctl does the same "
                                   "work."));
    return runApplication(count, texts, arguments, keeper);
}

} // namespace

} // namespace nimbrel

int main(int count, char **arguments)
{
    try {
        return nimbrel::run(count, arguments);
    } catch (const std::exception &error) {
        return nimbrel::fail(QString::fromUtf8(error.what()));
    }
}
