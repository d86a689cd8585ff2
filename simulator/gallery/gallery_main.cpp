#include "simulator/gallery/gallery_page.h"
#include "simulator/gallery/layout_faults.h"
#include "simulator/gallery/stage.h"
#include "ui/picture.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QWidget>
#include <cstdio>

using namespace Qt::StringLiterals;
using namespace korvel;
using namespace korvel::gallery;

namespace {

int fail(const QString &why) {
    std::fprintf(stderr, "korvel-gallery: %s\n", qUtf8Printable(why));
    return 1;
}

/// Writes the picture of a case as it is set now; what went wrong, or nothing.
QString draw(const Case &shown, const QString &file) {
    const Staged staged(shown);
    if (!staged.window())
        return u"not one window"_s;
    QDir().mkpath(QFileInfo(file).path());
    if (!savePicture(pictureOf(*staged.window()), file))
        return u"cannot write "_s + file;
    return layoutFaults(*staged.window()).join(u"; "_s);
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 2)
        return fail(u"usage: korvel-gallery FOLDER"_s);
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    const PictureApplication app;
    const QList<Case> cases = allCases();
    int wrong = 0;
    for (const Setting &setting : allSettings()) {
        korvel::gallery::apply(setting);
        for (const Case &shown : cases) {
            const QString name = pictureFile(shown, nameOf(setting));
            if (const QString why = draw(shown, folder.filePath(name)); !why.isEmpty())
                wrong += fail(name + u": "_s + why);
        }
    }
    QSaveFile index(folder.filePath(u"index.html"_s));
    const QByteArray text = page(cases);
    if (!index.open(QIODevice::WriteOnly) || index.write(text) != text.size() || !index.commit())
        return fail(u"cannot write "_s + index.fileName());
    std::printf("%lld pictures of %lld cases, %d faults\n", static_cast<long long>(cases.size()) * 4,
                static_cast<long long>(cases.size()), wrong);
    return wrong == 0 ? 0 : 1;
}
