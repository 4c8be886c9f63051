// Tests make files the usual way, whatever umask they are started with; those that are about the
// umask set their own.
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace nimbrel::test {

namespace {

class OrdinaryUmask final : public testing::Environment
{
public:
    void SetUp() override { ::umask(022); }
};

// gtest owns it.
[[maybe_unused]] const testing::Environment *const ordinaryUmask =
    testing::AddGlobalTestEnvironment(new OrdinaryUmask);

} // namespace

} // namespace nimbrel::test
