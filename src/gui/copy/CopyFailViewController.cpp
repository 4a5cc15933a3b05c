#include "gui/copy/CopyFailViewController.h"

#include "engine/platform/NativePath.h"
#include "gui/widgets/SizeText.h"

namespace velmora {
namespace {

QString counted(qsizetype count, const char* one, const char* many) {
    return QString("%1 %2").arg(count).arg(count == 1 ? one : many);
}

QString titleOf(const CopyResult& result, const QString& stopText) {
    if (result.cancelled || result.destinationLost) return stopText;
    if (!result.failures.isEmpty()) return counted(result.failures.size(), "item could not be copied", "items could not be copied");
    return counted(result.mismatches.size(), "copied file differs from its source", "copied files differ from their source");
}

QString messageOf(const CopyResult& result) {
    QStringList sentences;
    sentences << QString("%1 (%2) copied into \"%3\".")
                     .arg(counted(qsizetype(result.copiedItems), "item", "items"), byteToSizeWithByte(result.copiedBytes),
                          displayPath(result.destinationFolder));
    if (result.cancelled || result.destinationLost) sentences << "The items the copy had not reached were not copied.";
    if ((result.cancelled || result.destinationLost) && !result.failures.isEmpty())
        sentences << counted(result.failures.size(), "item", "items") + " could not be copied.";
    if (!result.mismatches.isEmpty() && !result.failures.isEmpty())
        sentences << counted(result.mismatches.size(), "copied file differs", "copied files differ") + " from the source.";
    if (result.verified && result.mismatches.isEmpty())
        sentences << counted(qsizetype(result.verifiedFiles), "copied file matches its source",
                             "copied files match their source") + " byte for byte.";
    if (!result.failures.isEmpty() || !result.mismatches.isEmpty()) sentences << "The copy is not whole: see the details.";
    return sentences.join(' ');
}

}  // namespace

CopyFailViewController::CopyFailViewController(const CopyResult& result, const QString& stopText, QWidget* parent)
    : CopyEndViewController(result,
                            {"ic_fail", titleOf(result, stopText), messageOf(result),
                             !result.failures.isEmpty() || !result.mismatches.isEmpty() || !result.notes.isEmpty(),
                             {520, 250}, 460},
                            parent) {}

}  // namespace velmora
