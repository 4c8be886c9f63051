#include "discovery/linux/LinuxClient.h"
#include "fs/MountTable.h"

namespace nimbrel {

namespace {

// What another mount covers isn't rclone's to the user.
QList<QString> mountsIn(const std::vector<Mount> &table)
{
    QList<QString> points;
    for (const Mount &mount : table) {
        if (mount.type != "fuse.rclone")
            continue;
        const auto top = mountAt(table, mount.point);
        if (top && top->id == mount.id)
            points.append(QString::fromStdString(mount.point));
    }
    return points;
}

} // namespace

QList<QString> rcloneMounts()
{
    return mountsIn(mountTable());
}

QList<QString> rcloneMountsIn(std::string_view mountinfo)
{
    return mountsIn(parseMountTable(mountinfo));
}

} // namespace nimbrel
