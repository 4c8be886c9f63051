// One encrypted folder as a filesystem: the delegate of the FUSE layer.
#pragma once

#include "config/NBNimbrelFSSettings.h"
#include "config/NBPreferencesDictionary.h"
#include "crypto/NBCryptor.h"
#include "fs/NBErrno.h"
#include "fs/NBFileHandle.h"
#include "fs/NBItemAttributes.h"
#include "fs/PathCache.h"
#include "fs/ReusedBuffer.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <vector>

namespace nimbrel {

// One entry of an encrypted folder's listing.
struct NBDirectoryEntry
{
    std::string name;       // plain
    std::string storedName; // as it stands on disk
    ino_t inode = 0;
    unsigned char type = 0; // DT_* of readdir(3)
    off_t next = 0;         // where the entry behind it stands in the folder, as the store tells
};

// A listing tells its error beside what it has: an unreadable folder lists as empty (kept, see
// QUIRKS).
struct NBDirectoryListing
{
    std::vector<std::string> names;
    int error = 0; // errno, 0 for none
};

// Does exactly what the format's first implementation does, quirks included; what real programs
// need beyond that, the binding above adds. Plain paths are absolute and rooted at the mount
// point. Not thread-safe: one call at a time; only the purge of the path
// cache has a thread of its own.
class NBNimbrelFS final
{
public:
    // initWithRootPath:, initWithRootPath:andPreferences:
    // No passphrase, key check off: the view of a folder that is about to be made. `rootPath` is
    // absolute. Null only when no key can be made (the random generator fails).
    [[nodiscard]] static std::unique_ptr<NBNimbrelFS>
    withRootPath(std::string rootPath, const NBPreferencesDictionary &preferences = {});
    // initWithRootPath:preferences:andPassphrase:
    // Key check on: null is what a wrong passphrase looks like.
    [[nodiscard]] static std::unique_ptr<NBNimbrelFS>
    withRootPath(std::string rootPath, const NBPreferencesDictionary &preferences,
                 std::string_view passphrase);
    // initWithRootPath:preferences:passphrase:checkKey:
    [[nodiscard]] static std::unique_ptr<NBNimbrelFS>
    withRootPath(std::string rootPath, const NBPreferencesDictionary &preferences,
                 std::string_view passphrase, bool checkKey);

    // The same view with a cryptor of its own, for another thread; costs no derivation. Null when
    // the library refuses.
    [[nodiscard]] std::unique_ptr<NBNimbrelFS> copy() const;

    NBNimbrelFS(const NBNimbrelFS &) = delete;
    NBNimbrelFS &operator=(const NBNimbrelFS &) = delete;
    ~NBNimbrelFS();

    [[nodiscard]] const NBNimbrelFSSettings &settings() const noexcept { return _settings; }
    [[nodiscard]] const std::string &rootPath() const noexcept { return _rootPath; }
    [[nodiscard]] const std::string &version() const noexcept { return _version; }
    [[nodiscard]] const NBCryptor &cryptor() const noexcept { return _cryptor; }

    // setAreFilenamesEncrypted:  also sets the name algorithm and its version.
    void setAreFilenamesEncrypted(bool areFilenamesEncrypted);
    // The two fields alone; the cryptor keeps the sizes it was built with (kept, see QUIRKS).
    void setKeySize(std::int64_t keySize) { _settings.keySize = keySize; }
    void setBlockSize(std::int64_t blockSize) { _settings.blockSize = blockSize; }
    // setPassphrase:  wraps the key anew; the empty passphrase does nothing. False when the
    // derivation failed and the old blob stands.
    [[nodiscard]] bool setPassphrase(std::string_view passphrase);

    // Off by default, and the delegate is exact. On, a whole block of zero bytes on disk, which a
    // gap leaves, reads as zeros instead of as the decryption of zeros. Merges read so, too.
    void setReadsHolesAsZeros(bool readsHolesAsZeros) { _readsHolesAsZeros = readsHolesAsZeros; }
    [[nodiscard]] bool readsHolesAsZeros() const noexcept { return _readsHolesAsZeros; }

    // Paths and names.
    [[nodiscard]] std::string _securePathWithPath(const std::string &path);
    [[nodiscard]] std::string _encodePath(const std::string &path) const;
    [[nodiscard]] std::string _decodeFilename(const std::string &storedName) const;
    // The cache has no limit of its own; whoever looks up very many paths keeps it small.
    [[nodiscard]] std::size_t cachedPaths() { return _pathCache.size(); }
    void purgePathCache() { _pathCache.purge(); }

    // Names.
    [[nodiscard]] NBDirectoryListing contentsOfDirectoryAtPath(const std::string &path);
    // Gives an entry of a folder its plain name; false where the listing hides it.
    [[nodiscard]] bool isListed(NBDirectoryEntry &entry, bool isInRoot) const;
    // createDirectoryAtPath:attributes:error:  with the permissions of `attributes`, if any.
    NBDone createDirectoryAtPath(const std::string &path, const NBItemAttributes &attributes);
    // createFileAtPath:attributes:userData:error:  truncates an existing file; `additionalFlags`
    // (O_EXCL, O_NOFOLLOW) come from the binding and are 0 in the plain operation.
    NBErrnoOr<NBFileHandle> createFileAtPath(const std::string &path, mode_t posixPermissions,
                                             int additionalFlags = 0);
    NBDone moveItemAtPath(const std::string &path, const std::string &toPath);
    NBDone removeDirectoryAtPath(const std::string &path);
    NBDone removeItemAtPath(const std::string &path); // a whole tree where it is a folder
    NBDone linkItemAtPath(const std::string &path, const std::string &toPath);
    NBDone createSymbolicLinkAtPath(const std::string &path, const std::string &destination);
    // Error code 0 where the stored target doesn't decode: nothing tells why (kept, see QUIRKS).
    NBErrnoOr<std::string> destinationOfSymbolicLinkAtPath(const std::string &path);
    NBDone exchangeDataOfItemAtPath(const std::string &path, const std::string &withPath);

    // Content. Sizes and offsets are in bytes.
    NBErrnoOr<NBFileHandle> openFileAtPath(const std::string &path, int mode);
    NBErrnoOr<std::size_t> readFileAtPath(const std::string &path, NBFileHandle &userData,
                                          ByteSpan buffer, std::int64_t offset);
    NBErrnoOr<std::size_t> writeFileAtPath(const std::string &path, NBFileHandle &userData,
                                           ByteView buffer, std::int64_t offset);
    // A run of blocks as it stands on disk, made plain in place as reading makes it; `offset` is
    // where it begins in the file. False when the cipher failed.
    [[nodiscard]] bool decipherBlocks(ByteSpan run, std::int64_t offset) const;
    void releaseFileAtPath(const std::string &path, NBFileHandle &userData);

    // Attributes.
    NBErrnoOr<struct stat> attributesOfItemAtPath(const std::string &path);
    NBErrnoOr<struct statvfs> attributesOfFileSystemForPath(const std::string &path);
    // `userData` is null when no open file is meant. The odd results of the size stage are kept
    // (see QUIRKS): success with an errno in `lastWriteError`, and a failure with error code 0.
    NBDone setAttributes(const NBItemAttributes &attributes, const std::string &path,
                         NBFileHandle *userData);
    NBErrnoOr<std::vector<std::string>> extendedAttributesOfItemAtPath(const std::string &path);
    NBErrnoOr<Bytes> valueOfExtendedAttribute(const std::string &name, const std::string &path);
    // `options`: XATTR_CREATE, XATTR_REPLACE of setxattr(2), or 0.
    NBDone setExtendedAttribute(const std::string &name, const std::string &path, ByteView value,
                                int options);
    NBDone removeExtendedAttribute(const std::string &name, const std::string &path);

private:
    NBNimbrelFS(std::string rootPath, NBNimbrelFSSettings settings, NBCryptor cryptor);

    // A part of a write that lies in one block, `inBlock` bytes from its start.
    struct Piece
    {
        std::uint64_t block;
        std::uint64_t inBlock;
        ByteView data;
    };
    // A run of blocks that is ready for the disk. The two lengths differ where the cipher failed.
    struct Run
    {
        std::size_t plain = 0;
        std::size_t enciphered = 0;
    };

    [[nodiscard]] std::string onDiskPathOf(const std::string &path);
    NBDone listFolder(const std::string &path, std::vector<std::string> &names);

    // False where block arithmetic would divide by zero; the configuration's reader lets such
    // block sizes pass.
    [[nodiscard]] bool hasBlocks() const noexcept;
    [[nodiscard]] std::uint64_t sizeOfBlocks() const noexcept;
    NBErrnoOr<std::size_t> readBlocks(int descriptor, ByteSpan buffer, std::int64_t offset);
    NBErrnoOr<std::size_t> readDirectly(int descriptor, ByteSpan run, std::uint64_t start);
    NBErrnoOr<std::size_t> writeRun(NBFileHandle &userData, ByteView run, std::uint64_t start,
                                    std::size_t size, bool isWhole);
    [[nodiscard]] bool needsMerge(const Piece &piece, std::uint64_t fileSize) const noexcept;
    NBErrnoOr<std::size_t> merge(int descriptor, const Piece &piece, ByteSpan block);
    NBDone addMerged(int descriptor, const Piece &piece, ByteSpan out, Run &run);
    void addPlain(ByteView data, std::uint64_t firstBlock, ByteSpan out, Run &run);
    NBErrnoOr<Run> assemble(int descriptor, std::uint64_t fileSize, ByteView buffer,
                            std::int64_t offset, ByteSpan out);

    // A run of blocks, in place; `start` is its place in the file. False when the cipher failed.
    [[nodiscard]] bool decipher(ByteSpan run, std::uint64_t start) const;
    [[nodiscard]] bool decipherAroundHoles(ByteSpan run, std::uint64_t firstBlock) const;
    // Gives the length of what lies in `out`, which is `data` or apart from it. A block that the
    // cipher refuses adds nothing, and the later ones move up (kept, see QUIRKS).
    [[nodiscard]] std::size_t encipher(ByteView data, std::uint64_t firstBlock, ByteSpan out) const;

    // What a stage of setAttributes says: go on with the next one, or end with this result.
    using StageEnd = std::optional<NBDone>;
    StageEnd setSize(std::int64_t size, const std::string &path, NBFileHandle *userData);
    StageEnd cut(std::int64_t size, const std::string &path, const NBFileHandle *userData);
    StageEnd changeSize(NBFileHandle &file, std::uint64_t fileSize, std::uint64_t size);
    [[nodiscard]] int rewriteBlock(int descriptor, ByteSpan block, std::uint64_t number) const;
    StageEnd setFlags(std::uint32_t flags, const std::string &path, const NBFileHandle *userData);
    NBDone setOtherAttributes(const NBItemAttributes &attributes, const std::string &path);

    const std::string _version = "1";
    std::string _rootPath;
    NBNimbrelFSSettings _settings;
    NBCryptor _cryptor;
    PathCache _pathCache; // with its purge
    bool _readsHolesAsZeros = false;
    ReusedBuffer _readBuffer;  // for runs that don't fit the caller's buffer
    ReusedBuffer _writeBuffer; // enciphered runs, and the scratch block of a change of size
    // Files whose size was set by path to what it was: such a descriptor is never closed while the
    // delegate lives (kept, see QUIRKS).
    std::vector<UniqueFd> _descriptorsLeftOpen;
};

} // namespace nimbrel
