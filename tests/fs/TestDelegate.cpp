#include "fs/TestDelegate.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel::test {

NBPreferencesDictionary quickPreferences(std::int64_t blockSize, bool areFilenamesEncrypted)
{
    NBPreferencesDictionary preferences;
    preferences.set(preferenceKey::blockSize, blockSize);
    preferences.set(preferenceKey::areFilenamesEncrypted, areFilenamesEncrypted);
    preferences.set(preferenceKey::kdfIterations, std::int64_t{1});
    return preferences;
}

FixedUmask::FixedUmask() : _before(::umask(022)) {}

FixedUmask::~FixedUmask()
{
    ::umask(_before);
}

TestDelegate::TestDelegate(std::int64_t blockSize, bool areFilenamesEncrypted)
    : _root(_temp.makeFolder("store")),
      _delegate(
          NBNimbrelFS::withRootPath(_root, quickPreferences(blockSize, areFilenamesEncrypted)))
{
}

std::string TestDelegate::onDisk(const std::string &path) const
{
    return _delegate->_securePathWithPath(path);
}

NBFileHandle TestDelegate::create(const std::string &path, std::string_view content) const
{
    NBErrnoOr<NBFileHandle> file = _delegate->createFileAtPath(path, 0644);
    EXPECT_EQ(file.code(), 0) << path;
    if (!file)
        return {};
    const NBErrnoOr<std::size_t> written =
        _delegate->writeFileAtPath(path, *file, bytesOf(content), 0);
    EXPECT_EQ(written.code(), 0);
    EXPECT_EQ(sizeOf(*file), static_cast<std::int64_t>(content.size()));
    return *std::move(file);
}

NBFileHandle TestDelegate::open(const std::string &path) const
{
    NBErrnoOr<NBFileHandle> file = _delegate->openFileAtPath(path, O_RDWR);
    EXPECT_EQ(file.code(), 0) << path;
    return file ? *std::move(file) : NBFileHandle{};
}

std::string TestDelegate::content(NBFileHandle &file) const
{
    std::string text(static_cast<std::size_t>(std::max<std::int64_t>(sizeOf(file), 0)), '\0');
    const NBErrnoOr<std::size_t> got = _delegate->readFileAtPath("", file, spanOf(text), 0);
    EXPECT_EQ(got.code(), 0);
    EXPECT_EQ(got ? *got : 0, text.size());
    return text;
}

std::string TestDelegate::contentAt(const std::string &path) const
{
    NBFileHandle file = open(path);
    return content(file);
}

std::int64_t sizeOf(const NBFileHandle &file)
{
    struct stat status = {};
    return ::fstat(file.descriptor.get(), &status) == 0 ? status.st_size : -1;
}

Bytes diskBytes(const NBFileHandle &file)
{
    Bytes bytes(static_cast<std::size_t>(std::max<std::int64_t>(sizeOf(file), 0)));
    EXPECT_EQ(::pread(file.descriptor.get(), bytes.data(), bytes.size(), 0),
              static_cast<ssize_t>(bytes.size()));
    return bytes;
}

void setDiskBytes(const NBFileHandle &file, ByteView bytes)
{
    ASSERT_EQ(::pwrite(file.descriptor.get(), bytes.data(), bytes.size(), 0),
              static_cast<ssize_t>(bytes.size()));
    if (sizeOf(file) == static_cast<std::int64_t>(bytes.size()))
        return; // a change of size is dear on some stores
    ASSERT_EQ(::ftruncate(file.descriptor.get(), static_cast<off_t>(bytes.size())), 0);
}

NBFileHandle memoryFile()
{
    NBFileHandle file{UniqueFd(::memfd_create("nimbrel-test", MFD_CLOEXEC))};
    EXPECT_TRUE(file.descriptor);
    return file;
}

} // namespace nimbrel::test
