#include "fs/FuseTransport.h"

#include "fs/FuseRequest.h"
#include "fs/RequestLoop.h"

#include <algorithm>
#include <cstring>
#include <linux/fuse.h>
#include <sys/uio.h>
#include <unistd.h>

namespace nimbrel {

namespace {

// The fixed part at `offset` of a message; false where the message is too short for it.
template <class Part>
bool read(ByteView message, std::size_t offset, Part &part)
{
    if (message.size() < offset + sizeof part)
        return false;
    std::memcpy(&part, message.data() + offset, sizeof part);
    return true;
}

// libfuse's answer to the greeting: the header, then what was agreed on.
void agree(const iovec *parts, int count, FuseDisk &disk)
{
    if (count < 2 || parts[1].iov_len < sizeof(fuse_init_out))
        return;
    const auto *header = static_cast<const fuse_out_header *>(parts[0].iov_base);
    if (header->unique != disk.greeting || header->error != 0)
        return;
    static_cast<fuse_init_out *>(parts[1].iov_base)->flags |= FUSE_HANDLE_KILLPRIV_V2;
    disk.greeting = 0;
}

ssize_t receive(int device, void *buffer, std::size_t size, void *)
{
    return ::read(device, buffer, std::min(size, RequestBuffer::size()));
}

ssize_t send(int device, iovec *parts, int count, void *userData)
{
    FuseDisk &disk = *static_cast<FuseDisk *>(userData);
    if (disk.greeting != 0)
        agree(parts, count, disk);
    return ::writev(device, parts, count);
}

} // namespace

void noteRequest(ByteView message, FuseDisk &disk)
{
    fuse_in_header header{};
    if (!read(message, 0, header))
        return;
    if (header.opcode == FUSE_WRITE) {
        fuse_write_in write{};
        disk.dropsPrivileges = read(message, sizeof header, write) &&
                               (write.write_flags & FUSE_WRITE_KILL_SUIDGID) != 0;
    } else if (header.opcode == FUSE_INIT) {
        fuse_init_in greeting{};
        if (read(message, sizeof header, greeting) &&
            (greeting.flags & FUSE_HANDLE_KILLPRIV_V2) != 0)
            disk.greeting = header.unique;
    }
}

bool installTransport(fuse_session *session)
{
    fuse_custom_io transport{};
    transport.read = receive;
    transport.writev = send;
    return fuse_session_custom_io(session, &transport, fuse_session_fd(session)) == 0;
}

} // namespace nimbrel
