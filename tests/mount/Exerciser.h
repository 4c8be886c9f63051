// Works on a disk at random and knows at each moment what must be on it.
#pragma once

#include "mount/ExerciserDice.h"
#include "mount/MountedFolder.h"
#include "mount/OpenFile.h"

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace nimbrel::test {

// Every operation is done on the disk and on a model in memory. What differs is thrown as
// std::runtime_error with the last operations. One thread; all calls of one object in turn.
class Exerciser final
{
public:
    Exerciser(MountedFolder &disk, std::uint64_t seed, std::size_t block);

    void work(long operations);

private:
    struct Content // of a file, whatever its names are by now
    {
        std::string bytes;
        std::deque<std::string> history; // what was done to it last
    };
    struct Handle
    {
        OpenFile file;
        std::shared_ptr<Content> content;
        int flags;
    };
    struct Operation;

    static const std::vector<Operation> &operations();
    void step();
    // The next comparison that fails tells the history of this file.
    void note(const std::shared_ptr<Content> &content, const std::string &text);
    void note(const Handle &handle, const std::string &text);
    [[nodiscard]] std::string history() const;

    // ExerciserContent.cpp
    void write();
    void append();
    void read();
    void truncate();
    void allocate();
    void writeMapped();
    void readMapped();
    void copyRange();
    void locateHoles();
    void forgetCache();

    // ExerciserNames.cpp
    void open();
    void close();
    void rename();
    void exchange();
    void link();
    void unlink();
    void compareStatus();
    void compareListing();
    void compareAll();
    void remount();

    [[nodiscard]] std::string somePath();              // below the disk, there or not
    [[nodiscard]] const std::string *someFile();       // the path of a file; none when none is
    [[nodiscard]] Handle *someHandle(int neededFlags); // O_RDONLY: may be read, O_RDWR: both
    void compare(const std::string &what, std::string_view expected, std::string_view seen) const;

    MountedFolder &_disk;
    ExerciserDice _dice;
    std::map<std::string, std::shared_ptr<Content>> _files; // by path below the disk
    std::vector<std::unique_ptr<Handle>> _handles;
    std::shared_ptr<Content> _current; // what the operation is done to
    long _number = 0;                  // of the operation
};

} // namespace nimbrel::test
