#include "simulator/gallery/gallery_page.h"
#include "simulator/gallery/stage.h"
#include "simulator/gallery/window_faults.h"
#include "ui/widgets/picture.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QHash>
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

/// Draws cases into a folder, each different picture once.
class Painter {
public:
    explicit Painter(const QString &f) : folder(f) {}

    /// Draws a case in a setting. Returns an error message, or nothing.
    QString draw(const Case &shown, const Setting &setting) {
        const Staged staged(shown);
        if (!staged.window())
            return u"not one window"_s;
        const QImage picture = pictureOf(*staged.window());
        QString &file = files[contentOf(picture)];
        const QString name = pictureName(shown, setting);
        if (file.isEmpty()) {
            file = name + u".png"_s;
            const QString path = folder.filePath(file);
            QDir().mkpath(QFileInfo(path).path());
            if (!savePicture(picture, path))
                return u"cannot write "_s + path;
        }
        drawn[name] = file;
        return layoutFaults(*staged.window()).join(u"; "_s);
    }
    /// The file of each picture, by its name.
    const PictureFiles &pictures() const { return drawn; }
    qsizetype count() const { return files.size(); }

private:
    static QByteArray contentOf(const QImage &picture) {
        const QByteArrayView bits(picture.constBits(), picture.sizeInBytes());
        QCryptographicHash hash(QCryptographicHash::Sha1);
        hash.addData(QByteArray::number(picture.width()));
        hash.addData(bits);
        return hash.result();
    }

    const QDir folder;
    QHash<QByteArray, QString> files; ///< By content.
    PictureFiles drawn;
};

/// Cases that look like another one in every setting, or the same in two settings; one per line.
QStringList copies(const QList<Case> &cases, const PictureFiles &pictures) {
    QStringList faults;
    QHash<QStringList, QString> seen;
    for (const Case &shown : cases) {
        QStringList own;
        for (const Setting &setting : settingsOf(shown))
            own.append(pictures.value(pictureName(shown, setting)));
        const QString name = shown.group + u'/' + shown.name;
        if (QSet<QString>(own.begin(), own.end()).size() != own.size())
            faults.append(name + u": the same in two settings"_s);
        if (const QString other = seen.value(own); !other.isEmpty())
            faults.append(name + u": the same as "_s + other);
        seen[own] = name;
    }
    return faults;
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 2)
        return fail(u"usage: korvel-gallery FOLDER"_s);
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    const PictureApplication app;
    Painter painter(folder.path());
    int wrong = 0;
    for (const Setting &setting : allSettings()) {
        korvel::gallery::apply(setting);
        for (const Case &shown : allCases())
            if (settingsOf(shown).contains(setting))
                if (const QString why = painter.draw(shown, setting); !why.isEmpty())
                    wrong += fail(pictureName(shown, setting) + u": "_s + why);
    }
    const QList<Case> cases = allCases();
    for (const QString &copy : copies(cases, painter.pictures()))
        wrong += fail(copy);
    QSaveFile index(folder.filePath(u"index.html"_s));
    const QByteArray text = page(cases, painter.pictures());
    if (!index.open(QIODevice::WriteOnly) || index.write(text) != text.size() || !index.commit())
        return fail(u"cannot write "_s + index.fileName());
    std::printf("%lld pictures of %lld cases, %d faults\n", static_cast<long long>(painter.count()),
                static_cast<long long>(cases.size()), wrong);
    return wrong == 0 ? 0 : 1;
}
