#include "ui/views/edit_menu.h"

#include "app/model/wording.h"

using namespace Qt::StringLiterals;

namespace korvel {

QString editMenuTitle() { return L(u"编辑", u"Edit"); }

QList<EditMenuItem> editMenu() {
    return {{L(u"撤销", u"Undo"), u"undo:"_s, u"z"_s},
            {L(u"重做", u"Redo"), u"redo:"_s, u"Z"_s},
            {},
            {L(u"剪切", u"Cut"), u"cut:"_s, u"x"_s},
            {L(u"拷贝", u"Copy"), u"copy:"_s, u"c"_s},
            {L(u"粘贴", u"Paste"), u"paste:"_s, u"v"_s},
            {L(u"全选", u"Select All"), u"selectAll:"_s, u"a"_s}};
}

} // namespace korvel
