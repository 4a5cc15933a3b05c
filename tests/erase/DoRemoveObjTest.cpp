// The disk wipes' leftover remover with the real secure-remove tool.
#include "support/EraseTestSupport.h"
#include "engine/erase/DoRemoveObj.h"

#include <QEventLoop>
#include <QTimer>

namespace velmora::test {
namespace {

class DoRemoveObjTest : public EraseTest {
protected:
    // Runs the list; false when removeObjEnd did not come within two minutes.
    static bool removeAll(const QStringList& paths) {
        DoRemoveObj remover;
        QEventLoop loop;
        int ends = 0;
        QObject::connect(&remover, &DoRemoveObj::removeObjEnd, &loop, [&] {
            ++ends;
            loop.quit();
        });
        QTimer::singleShot(120000, &loop, &QEventLoop::quit);
        remover.initWithArr(paths);
        loop.exec();
        return ends == 1;
    }
};

TEST_F(DoRemoveObjTest, ErasesEachPathOneAfterTheOther) {
    const QString fill = scratch(".Velmora");
    writeFile(fill + "/.velmora_0", QByteArray(100000, 'f'));
    writeFile(fill + "/.velmora_1", QByteArray(100000, 'f'));
    const QString single = scratch("left.bin");
    writeFile(single, "left behind");
    ASSERT_TRUE(removeAll({fill, single, scratch("already-gone")}));
    EXPECT_FALSE(existsOnDisk(fill));
    EXPECT_FALSE(existsOnDisk(single));
}

TEST_F(DoRemoveObjTest, EmptyListEnds) { EXPECT_TRUE(removeAll({})); }

}  // namespace
}  // namespace velmora::test
