#include "simulator/gallery/gallery_page.h"

using namespace Qt::StringLiterals;

namespace korvel::gallery {

namespace {

const QString HEAD = uR"(<!doctype html>
<html lang="en"><meta charset="utf-8"><meta name="viewport" content="width=device-width">
<title>KorvelTray gallery</title>
<style>
:root { color-scheme: light dark; font: 14px/1.5 system-ui, sans-serif; }
body { margin: 0; display: grid; grid-template-columns: 14rem 1fr; }
nav { position: sticky; top: 0; height: 100vh; box-sizing: border-box; overflow: auto; padding: 1.2rem; border-right: 1px solid #8884; }
nav a { display: block; color: inherit; text-decoration: none; padding: .15rem 0; }
nav a:hover { text-decoration: underline; }
nav label { display: block; }
main { padding: 1.2rem 2rem; min-width: 0; }
h1 { font-size: 1.2rem; margin: 0 0 1rem; } h2 { margin: 2rem 0 .5rem; } h3 { font-size: .95rem; margin: 1.2rem 0 .4rem; }
.row { display: flex; flex-wrap: wrap; gap: 1rem; align-items: flex-start; }
figure { margin: 0; padding: .8rem; border-radius: .6rem; background: #dfe3e8; color: #333; }
figure.dark { background: #14171a; color: #ddd; }
figcaption { font-size: .75rem; opacity: .8; }
img { display: block; max-width: 100%; border-radius: 4px; }
body.no-en .en, body.no-zh .zh, body.no-light .light, body.no-dark .dark { display: none; }
</style>
<script>
function toggle(box) { document.body.classList.toggle('no-' + box.value, !box.checked); }
</script>
)"_s;

QString box(const QString &value, const QString &title) {
    return u"<label><input type=\"checkbox\" value=\"%1\" checked onchange=\"toggle(this)\"> %2</label>\n"_s.arg(value,
                                                                                                                 title);
}

QString anchor(const QString &group) { return group.toLower().replace(u' ', u'-'); }

QString figure(const Case &shown, const Setting &setting, const PictureFiles &pictures) {
    const QStringList differences = differencesOf(shown, setting);
    return u"<figure class=\"%1\"><img loading=\"lazy\" src=\"%2\" alt=\"%3\" "
           "onload=\"this.width=this.naturalWidth/2\"><figcaption>%4</figcaption></figure>\n"_s.arg(
               differences.join(u' '), pictures.value(pictureName(shown, setting)), shown.name,
               differences.join(u", "_s));
}

} // namespace

QString pictureName(const Case &shown, const Setting &setting) {
    return anchor(shown.group) + u'/' + (QStringList(shown.name) + differencesOf(shown, setting)).join(u'-');
}

QByteArray page(const QList<Case> &cases, const PictureFiles &pictures) {
    QString menu, body, group;
    for (const Case &shown : cases) {
        if (shown.group != group) {
            group = shown.group;
            menu += u"<a href=\"#%1\">%2</a>\n"_s.arg(anchor(group), group);
            body += u"<h2 id=\"%1\">%2</h2>\n"_s.arg(anchor(group), group);
        }
        body += u"<h3>%1</h3>\n<div class=\"row\">\n"_s.arg(shown.name);
        for (const Setting &setting : settingsOf(shown))
            body += figure(shown, setting, pictures);
        body += u"</div>\n"_s;
    }
    const QString boxes =
        box(u"en"_s, u"English"_s) + box(u"zh"_s, u"中文"_s) + box(u"light"_s, u"Light"_s) + box(u"dark"_s, u"Dark"_s);
    return (HEAD + u"<nav><h1>KorvelTray</h1>\n"_s + boxes + u"<p>\n"_s + menu + u"</nav>\n<main>\n"_s + body +
            u"</main>\n</html>\n"_s)
        .toUtf8();
}

} // namespace korvel::gallery
