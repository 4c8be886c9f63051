// Any bytes as an archive of records: records or an error, never a crash.
#include "platform/KeyedArchive.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

// What was read is written so that it reads the same.
bool comesBack(const QList<nimbrel::KeyedRecord> &records)
{
    const auto again = nimbrel::unarchivedRecords(nimbrel::archivedData(records));
    const auto *const read = std::get_if<QList<nimbrel::KeyedRecord>>(&again);
    if (read == nullptr || read->size() != records.size())
        return false;
    for (qsizetype i = 0; i < records.size(); ++i)
        if ((*read)[i].className() != records[i].className() ||
            (*read)[i].values() != records[i].values())
            return false;
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const auto result = nimbrel::unarchivedRecords(bytes);
    if (const auto *error = std::get_if<nimbrel::KeyedArchiveError>(&result)) {
        if (error->message.isEmpty())
            std::abort();
        return 0;
    }
    // What is shared a thousand times is written a thousand times, which may be too much to read.
    const auto &records = std::get<QList<nimbrel::KeyedRecord>>(result);
    if (records.size() <= 64 && !comesBack(records))
        std::abort();
    return 0;
}
