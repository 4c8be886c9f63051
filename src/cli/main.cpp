#include "cli/CommandError.h"
#include "cli/CommandLine.h"
#include "cli/Output.h"
#include "cli/PrintableText.h"
#include "fs/ProcessGuards.h"

#include <exception>
#include <new>

namespace {

using nimbrel::complain;
using nimbrel::ExitStatus;

ExitStatus runProgram(int count, const char *const *arguments)
{
    try {
        if (const int error = nimbrel::forbidDumps(); error != 0)
            throw nimbrel::CommandError(ExitStatus::Failed,
                                        "This process can't be kept out of core files: " +
                                            nimbrel::errorText(error));
        const ExitStatus status = nimbrel::parseCommandLine(count, arguments)();
        if (nimbrel::flushOutput())
            return status;
        complain("Standard output can't be written. Is the disk full?");
    } catch (const nimbrel::CommandError &error) {
        complain(error.what());
        return error.status();
    } catch (const std::bad_alloc &) {
        complain("There is not enough memory. Close other programs and try again.");
    } catch (const std::exception &error) {
        complain(error.what());
    }
    return ExitStatus::Failed;
}

} // namespace

int main(int count, char **arguments)
{
    return static_cast<int>(runProgram(count, arguments));
}
