#include "cli/Output.h"

#include "cli/PrintableText.h"

#include <fmt/core.h>

#include <cstdio>
#include <unistd.h>

namespace nimbrel {

void say(std::string_view line, char end)
{
    // Failures stay noted in the stream; flushOutput tells of them.
    (void)std::fwrite(line.data(), 1, line.size(), stdout);
    (void)std::fputc(end, stdout);
}

void complain(std::string_view line)
{
    const std::string text = fmt::format("nimbrelctl: {}\n", printable(line));
    (void)std::fwrite(text.data(), 1, text.size(), stderr);
}

void showProgress(std::string_view line)
{
    if (::isatty(STDERR_FILENO) == 1)
        complain(line);
}

bool flushOutput()
{
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

} // namespace nimbrel
