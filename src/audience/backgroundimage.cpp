#include "backgroundimage.h"

#include "audience/mgdiplusresize.h"
#include "core/kverror.h"
#include "core/prompts.h"
#include "core/settings.h"

#include <QDir>
#include <QFileInfo>

namespace backgroundimage {

bool SelectImage() {
    const QString file = prompts().openFile(kTitle, settings::readText(keys::BGImagePath), kFilter);
    if (file.isEmpty())
        return false;
    try {
        // A small reading proves the file is a picture without decoding it whole.
        int w = 16;
        int h = 16;
        mGDIPlusResize::LoadPictureGDIPlus(file, w, h, Qt::white, false);
    } catch (const KvError& e) {
        prompts().msgBox(e.description(), Prompts::Exclamation, e.source());
        return false;
    }
    settings::writeText(keys::BGImagePath,
                        QDir::toNativeSeparators(QFileInfo(file).absolutePath()) + QDir::separator());
    settings::writeText(keys::MainImage, file);
    return true;
}

void ClearImage() {
    settings::writeText(keys::MainImage, QString());
}

} // namespace backgroundimage
