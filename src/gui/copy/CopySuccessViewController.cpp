#include "gui/copy/CopySuccessViewController.h"

#include "engine/platform/NativePath.h"
#include "gui/widgets/SizeText.h"

namespace velmora {
namespace {

QString messageOf(const CopyResult& result) {
    QString message = QString("%1 %2 (%3) copied into \"%4\".")
                          .arg(result.copiedItems)
                          .arg(result.copiedItems == 1 ? "item" : "items")
                          .arg(byteToSizeWithByte(result.copiedBytes), displayPath(result.destinationFolder));
    if (result.verified)
        message += QString(" Every copied file (%1) was compared with its source byte for byte.").arg(result.verifiedFiles);
    qint64 notes = 0;
    for (const CopyNote& note : result.notes) notes += note.count;
    if (notes > 0)
        message += QString(" The destination could not keep everything of %1 %2: see the details.")
                       .arg(notes)
                       .arg(notes == 1 ? "item" : "items");
    return message;
}

}  // namespace

CopySuccessViewController::CopySuccessViewController(const CopyResult& result, QWidget* parent)
    : CopyEndViewController(result,
                            {"ic_success", "The copy is complete", messageOf(result), !result.notes.isEmpty(), {500, 230}, 430},
                            parent) {}

}  // namespace velmora
