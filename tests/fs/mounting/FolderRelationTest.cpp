#include "fs/FolderRelation.h"

#include "OwnMounts.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

TEST(NBFolderRelationTest, PathsAloneTellFourCases)
{
    const TempFolder temp;
    const std::string safe = temp.makeFolder("safe");
    const std::string inner = temp.makeFolder("safe/inner");
    const std::string other = temp.makeFolder("safe2");
    EXPECT_EQ(relationOf(other, safe), FolderRelation::Apart);
    EXPECT_EQ(relationOf(safe, safe), FolderRelation::Same);
    EXPECT_EQ(relationOf(inner, safe), FolderRelation::Inside);
    EXPECT_EQ(relationOf(safe, inner), FolderRelation::Above);
    EXPECT_EQ(relationOf(safe, other), FolderRelation::Apart);
}

// Two bind mounts, taken away at their end.
class NBFolderRelationBindTest : public testing::Test
{
protected:
    void TearDown() override { unmountAll(_bound); }

    TempFolder _temp;
    std::string _safe = _temp.makeFolder("safe");
    std::string _inner = _temp.makeFolder("safe/inner/most");
    std::string _bound = _temp.makeFolder("bound");
};

TEST_F(NBFolderRelationBindTest, TheFolderUnderAnotherNameIsTheSame)
{
    NIMBREL_NEED_OWN_MOUNTS();
    bindMount(_safe, _bound);
    EXPECT_EQ(relationOf(_bound, _safe), FolderRelation::Same);
    EXPECT_EQ(relationOf(_bound + "/inner", _safe), FolderRelation::Inside);
    EXPECT_EQ(relationOf(_safe + "/inner", _bound), FolderRelation::Inside);
    EXPECT_EQ(relationOf(_bound, _safe + "/inner"), FolderRelation::Above);
}

TEST_F(NBFolderRelationBindTest, AParentUnderAnotherNameIsSeenThrough)
{
    NIMBREL_NEED_OWN_MOUNTS();
    bindMount(_temp.path(), _bound);
    EXPECT_EQ(relationOf(_bound + "/safe", _safe), FolderRelation::Same);
    EXPECT_EQ(relationOf(_bound + "/safe/inner", _safe), FolderRelation::Inside);
    EXPECT_EQ(relationOf(_bound, _safe), FolderRelation::Above);
}

TEST_F(NBFolderRelationBindTest, APartShownElsewhereIsStillInside)
{
    NIMBREL_NEED_OWN_MOUNTS();
    bindMount(_safe + "/inner", _bound);
    EXPECT_EQ(relationOf(_bound, _safe), FolderRelation::Inside);
    EXPECT_EQ(relationOf(_bound + "/most", _safe), FolderRelation::Inside);
    EXPECT_EQ(relationOf(_safe, _bound), FolderRelation::Above);
}

TEST_F(NBFolderRelationBindTest, AnotherPartOfTheSameFilesystemIsApart)
{
    NIMBREL_NEED_OWN_MOUNTS();
    const std::string other = _temp.makeFolder("other");
    bindMount(other, _bound);
    EXPECT_EQ(relationOf(_bound, _safe), FolderRelation::Apart);
}

TEST_F(NBFolderRelationBindTest, AnotherFilesystemIsApart)
{
    NIMBREL_NEED_OWN_MOUNTS();
    mountMemory(_bound);
    EXPECT_EQ(relationOf(_bound, _safe), FolderRelation::Apart);
}

} // namespace
} // namespace nimbrel::test
