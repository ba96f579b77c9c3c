#include "workstation/gui/Theme.h"

#include <QIcon>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QTransform>

namespace workstation {
namespace {

namespace dark {
const QColor window(43, 45, 48);
const QColor base(30, 31, 34);
const QColor text(222, 224, 228);
const QColor faded(130, 134, 140);
const QColor accent(74, 136, 199);
const QColor viewerFrame(24, 24, 26);
}  // namespace dark

QPalette darkPalette() {
  QPalette palette;
  palette.setColor(QPalette::Window, dark::window);
  palette.setColor(QPalette::WindowText, dark::text);
  palette.setColor(QPalette::Base, dark::base);
  palette.setColor(QPalette::AlternateBase, QColor(36, 37, 40));
  palette.setColor(QPalette::ToolTipBase, QColor(60, 63, 66));
  palette.setColor(QPalette::ToolTipText, dark::text);
  palette.setColor(QPalette::PlaceholderText, dark::faded);
  palette.setColor(QPalette::Text, dark::text);
  palette.setColor(QPalette::Button, QColor(58, 61, 65));
  palette.setColor(QPalette::ButtonText, dark::text);
  palette.setColor(QPalette::BrightText, Qt::white);
  palette.setColor(QPalette::Link, QColor(104, 167, 230));
  palette.setColor(QPalette::Highlight, dark::accent);
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::Light, QColor(80, 84, 89));
  palette.setColor(QPalette::Midlight, QColor(68, 71, 76));
  palette.setColor(QPalette::Mid, QColor(36, 38, 41));
  palette.setColor(QPalette::Dark, QColor(27, 28, 31));
  palette.setColor(QPalette::Shadow, QColor(10, 10, 11));
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::HighlightedText,
                          QPalette::PlaceholderText, QPalette::Link})
    palette.setColor(QPalette::Disabled, role, QColor(112, 115, 120));
  palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(70, 73, 78));
  // The style writes what is disabled twice, first with this colour beside it: like a shadow, it is not to be seen.
  palette.setColor(QPalette::Disabled, QPalette::Light, dark::window);
  return palette;
}

/// Fusion with the arrows, black in itself, with which a bar says that it holds more.
class DarkStyle final : public QProxyStyle {
 public:
  DarkStyle() : QProxyStyle(QStyleFactory::create("Fusion")) {}

  QIcon standardIcon(StandardPixmap which, const QStyleOption* option, const QWidget* widget) const override {
    if (which != SP_ToolBarHorizontalExtensionButton && which != SP_ToolBarVerticalExtensionButton)
      return QProxyStyle::standardIcon(which, option, widget);
    return moreIcon(which == SP_ToolBarVerticalExtensionButton);
  }
  int pixelMetric(PixelMetric which, const QStyleOption* option, const QWidget* widget) const override {
    return which == PM_ToolBarExtensionExtent ? 20 : QProxyStyle::pixelMetric(which, option, widget);
  }

 private:
  static QIcon moreIcon(bool down) {
    QPixmap picture(32, 32);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(dark::text, 4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    for (const double start : {4.0, 16.0}) {
      const QPolygonF arrow{{start, 6}, {start + 10, 16}, {start, 26}};
      painter.drawPolyline(down ? QTransform(0, 1, 1, 0, 0, 0).map(arrow) : arrow);
    }
    return QIcon(picture);
  }
};

/// What the style does not take from the palette.
const char* const details =
    "QToolBar { border: none; spacing: 2px; padding: 3px; }"
    "QToolBar::separator { background: #1e1f22; width: 1px; margin: 4px 5px; }"
    "QToolButton { padding: 4px 7px; border-radius: 4px; }"
    "QToolBarExtension { padding: 0; background: #3f4348; }"
    "QToolButton:hover { background: #3f4348; }"
    "QToolButton:focus { background: #3a5f86; color: white; }"
    "QToolButton:checked { background: #355a80; color: white; }"
    "QStatusBar { color: #b9bcc2; }"
    "QStatusBar::item { border: none; }"
    "QToolTip { color: #dee0e4; background: #3c3f42; border: 1px solid #1e1f22; padding: 3px; }"
    "QScrollBar:vertical { background: #18181a; width: 13px; margin: 0; }"
    "QScrollBar::handle:vertical { background: #55595f; min-height: 26px; border-radius: 4px; margin: 1px 3px; }"
    "QScrollBar::handle:vertical:hover { background: #72777e; }"
    "QScrollBar::add-line:vertical, QScrollBar::sub-line:vertical { height: 0; }"
    "QScrollBar::add-page:vertical, QScrollBar::sub-page:vertical { background: none; }";

}  // namespace

void useTheme(QApplication& application) {
  QApplication::setStyle(new DarkStyle);
  QApplication::setPalette(darkPalette());
  application.setStyleSheet(details);
}

QPalette viewerFramePalette(bool front) {
  QPalette palette = QApplication::palette();
  palette.setColor(QPalette::Window, front ? dark::accent : dark::viewerFrame);
  return palette;
}

}  // namespace workstation
