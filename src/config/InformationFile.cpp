#include "config/InformationFile.h"

#include "config/AtomicFile.h"
#include "config/FileWork.h"

// A text that whoever shows it looks up in the string table: found there by the translators' tool
// (tools/update-translations) under the context.
#define NIMBREL_TEXT(context, text) text

namespace nimbrel {

std::string_view informationText() noexcept
{
    return NIMBREL_TEXT(
        "nimbrel",
        "This is an encrypted folder which contains files encrypted with Nimbrel.\r\n"
        "\r\n"
        "IMPORTANT: Do NOT store plaintext files directly in this folder. They will NOT be "
        "encrypted!\r\n"
        "\r\n"
        "Only files processed by the Nimbrel applications will be protected by Nimbrel. You "
        "want to encrypt your files? Simply store them in the Nimbrel applications and Nimbrel "
        "will encrypt them!\r\n"
        "\r\n"
        "WARNING: The .encfs6.xml file in this folder is a configuration file needed by "
        "Nimbrel. This file holds all information required for encrypting and decrypting your "
        "data. If the file gets lost or overwritten, you will lose access to your data!\r\n");
}

std::optional<FileError> writeInformationFile(const std::string &folder, std::string_view text)
{
    return replaceFile(pathIn(folder, informationFileName), text);
}

} // namespace nimbrel
