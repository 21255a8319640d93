#include "app/print_window.h"

#include "reports/printer.h"

#include <QImage>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>

#include <algorithm>

namespace app {

using reports::kTwipsPerPixel;

namespace {

constexpr double kPictureSharpness = 3; ///< dots of the picture to a pixel of the screen

/// The window in the dress of the page, for as long as this lives.
class DressedForPage
{
public:
    DressedForPage(QMainWindow& window, const QString& caption, const QStringList& hiddenMenus, int width)
        : window_(window), caption_(window.windowTitle()), size_(window.size())
    {
        for (const QString& name : hiddenMenus) {
            if (auto* menu = window.menuBar()->findChild<QMenu*>(name); menu != nullptr) {
                hidden_.append(menu->menuAction());
            }
        }
        showMenus(false);
        window_.setWindowTitle(caption);
        resizeTo({width, size_.height()});
    }
    DressedForPage(const DressedForPage&) = delete;
    DressedForPage& operator=(const DressedForPage&) = delete;
    ~DressedForPage()
    {
        resizeTo(size_);
        window_.setWindowTitle(caption_);
        showMenus(true);
    }

private:
    void resizeTo(QSize size)
    {
        // One that fills the screen has no size of its own.
        if (!window_.isMaximized() && !window_.isFullScreen()) {
            window_.resize(size);
        }
    }

    void showMenus(bool visible)
    {
        for (QAction* menu : hidden_) {
            menu->setVisible(visible);
        }
    }

    QMainWindow& window_;
    const QString caption_;
    const QSize size_;
    QList<QAction*> hidden_;
};

QImage pictureOf(QWidget& window)
{
    QImage picture((QSizeF(window.size()) * kPictureSharpness).toSize(), QImage::Format_RGB32);
    picture.setDevicePixelRatio(kPictureSharpness);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    window.render(&painter);
    return picture;
}

} // namespace

void printWindow(QMainWindow& window, const QString& caption, const QStringList& hiddenMenus, reports::Printer& printer)
{
    const DressedForPage dressed(window, caption, hiddenMenus, static_cast<int>(printer.scaleWidth() / kTwipsPerPixel));
    const QImage picture = pictureOf(window);
    QSizeF extent = QSizeF(window.size()) * kTwipsPerPixel;
    const QSizeF room(printer.scaleWidth(), printer.scaleHeight() - printer.textHeight(caption));
    if (extent != extent.boundedTo(room)) {
        extent.scale(room, Qt::KeepAspectRatio); // as the printer does, a window being no narrower than its filter bar
    }
    const double left = std::max((printer.scaleWidth() - extent.width()) / 2, 0.0);
    const double lineHeight = printer.textHeight(caption);
    const double top = std::max((printer.scaleHeight() - extent.height()) / 2, lineHeight);

    printer.setCurrentX(left);
    printer.setCurrentY(top - lineHeight);
    printer.print(caption);
    printer.setCurrentX(left);
    printer.setCurrentY(top);
    printer.printImage(picture);
    printer.endDocument();
}

} // namespace app
