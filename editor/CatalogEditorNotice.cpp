// The bar above the trees that says why a catalog could not be loaded, shown until a catalog
// that loads is chosen. It takes its height from the trees' column, not from a modal box.
#include "editor/CatalogEditorDlg.h"

#include "catalog/CatalogManager.h"
#include "catalog/CatalogMetadata.h"
#include "controls/ControlId.h"
#include "controls/SplitterControl.h"
#include "editor/CatalogEditorIds.h"
#include "editor/CatalogLoadNotice.h"

#include <QComboBox>
#include <QLabel>

using namespace ZEVGis;
using namespace ZEVGis::Data;
namespace Ids = ZEVGis::Editor::Ids;

namespace
{
constexpr int NoticeGap = 4;
}

void CCatalogEditorDlg::CreateLoadNotice()
{
    m_loadNotice = new QLabel(this);
    setControlId(m_loadNotice, Ids::LoadNotice);
    m_loadNotice->setWordWrap(true);
    m_loadNotice->setFrameShape(QFrame::StyledPanel);
    m_loadNotice->setMargin(4);
    m_loadNotice->setTextFormat(Qt::PlainText);
    m_loadNotice->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_loadNotice->setAutoFillBackground(true);
    QPalette palette = m_loadNotice->palette();
    palette.setColor(QPalette::Window, QColor(0xff, 0xf4, 0xce));
    palette.setColor(QPalette::WindowText, QColor(0x3b, 0x2f, 0x00));
    m_loadNotice->setPalette(palette);
    m_loadNotice->hide();
}

void CCatalogEditorDlg::ShowLoadNotice(const CCatalogMetadata& metadata)
{
    QStringList texts;
    CCatalogManager* manager = CCatalogManager::Instance();
    for (const int which : {1, 0})
    {
        QString file;
        QString reason;
        if (manager->GetLoadError(metadata.GetCatalogReference(), which, file, reason))
            texts << Editor::CatalogLoadNoticeText(metadata.GetCatalogNameUI(), which == 0,
                                                   Editor::SplitLoadReason(file, reason));
    }
    m_loadNotice->setText(texts.join(QStringLiteral("\n\n")));
    m_loadNotice->setHidden(texts.isEmpty());
    PlaceLoadNotice();
}

// The bar sits under the catalog combo, as wide as it; the upper tree and its caption make
// room below it.
void CCatalogEditorDlg::PlaceLoadNotice()
{
    if (!m_loadNotice)
        return;
    int shift = 0;
    if (!m_loadNotice->isHidden())
    {
        const QRect combo = m_catalogCombo->geometry();
        const int height = m_loadNotice->heightForWidth(combo.width());
        m_loadNotice->setGeometry(combo.left(), combo.bottom() + 1 + NoticeGap, combo.width(),
                                  height);
        shift = height + NoticeGap;
    }
    const int delta = shift - m_loadNoticeShift;
    if (delta == 0)
        return;
    m_loadNoticeShift = shift;
    CSplitterControl::ChangePos(findControlById(this, Ids::DrawingCaption), 0, delta);
    CSplitterControl::ChangeHeight(m_drawingTree, -delta, CSplitterControl::TopEdge);
}
