#include <QFile>
#include <QGuiApplication>
#include <QImageWriter>
#include <QPainter>
#include <QSaveFile>
#include <algorithm>
#include <array>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <exception>
#include <memory>

#include "workstation/render/RenderModule.h"
#include "workstation/render/ViewPainter.h"

namespace workstation {
namespace {

void printOnlyWhatIsFatal(QtMsgType type, const QMessageLogContext&, const QString& message) {
  if (type == QtCriticalMsg || type == QtFatalMsg) std::fprintf(stderr, "%s\n", message.toLocal8Bit().constData());
}

/// The application object that painting has made for itself; null until then.
std::unique_ptr<QGuiApplication>& ownApplication() {
  static auto* application = new std::unique_ptr<QGuiApplication>;  // left alone when the program ends
  return *application;
}

/// Text cannot be painted without an application object. One that is there already is used.
bool haveApplication() {
  if (QCoreApplication::instance()) return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
  static char name[] = "vertana";
  static char option[] = "-platform";
  static char platform[] = "offscreen";
  // Both must last as long as the application, which takes the options that it knows out of them.
  static std::array<char*, 4> arguments;
  static int count = 0;
  arguments = {name, option, platform, nullptr};
  count = 3;
  // The application takes on the person's locale, in which numbers may have a comma: the program's stays as it was.
  const std::string locale = std::setlocale(LC_ALL, nullptr);
  const QtMessageHandler previous = qInstallMessageHandler(printOnlyWhatIsFatal);
  ownApplication() = std::make_unique<QGuiApplication>(count, arguments.data());
  qInstallMessageHandler(previous);
  std::setlocale(LC_ALL, locale.c_str());
  return true;
}

std::string sentence(const char* pngFile, const std::string& reason) {
  return std::string("The picture ") + pngFile + " could not be written: " + reason + ".";
}

bool writePng(const QImage& image, const char* pngFile, std::string& problem) {
  QSaveFile file(QFile::decodeName(pngFile));
  if (!file.open(QIODevice::WriteOnly)) {
    problem = sentence(pngFile, file.errorString().toStdString());
    return false;
  }
  QImageWriter writer(&file, "png");
  if (!writer.write(image)) {
    problem = sentence(pngFile, writer.errorString().toStdString());
    file.cancelWriting();
    return false;
  }
  if (!file.commit()) {
    problem = sentence(pngFile, file.errorString().toStdString());
    return false;
  }
  return true;
}

bool paintToFile(const ViewPicture& picture, PixelSource& source, const RenderOptions& options, const char* pngFile,
                 std::string& problem) {
  if (!haveApplication()) {
    problem = sentence(pngFile, "the program has an application object without graphics");
    return false;
  }
  auto pixels = source.pixels(picture.image, problem);
  if (!pixels) return false;
  const double ratio = std::isfinite(options.devicePixelRatio) ? std::clamp(options.devicePixelRatio, 0.1, 8.0) : 1;
  const double width = std::ceil(picture.transform.viewWidth * ratio);
  const double height = std::ceil(picture.transform.viewHeight * ratio);
  QImage image;
  if (width >= 1 && height >= 1 && width <= 16384 && height <= 16384)
    image = QImage(static_cast<int>(width), static_cast<int>(height), QImage::Format_RGB32);
  if (image.isNull()) {
    problem = sentence(pngFile, "its size must be 1 to 16384 pixels a side");
    return false;
  }
  image.setDevicePixelRatio(ratio);
  image.fill(Qt::black);
  ViewPainter painter;
  QPainter canvas(&image);
  painter.paint(canvas, picture, std::make_shared<const PixelData>(*std::move(pixels)));
  canvas.end();
  return writePng(image, pngFile, problem);
}

bool renderPicture(const ViewPicture& picture, PixelSource& source, const RenderOptions& options, const char* pngFile,
                   std::string& problem) {
  try {
    return paintToFile(picture, source, options, pngFile, problem);
  } catch (const std::exception& error) {
    problem = sentence(pngFile, error.what());
  } catch (...) {
    problem = sentence(pngFile, "painting failed");
  }
  return false;
}

void finish() { ownApplication().reset(); }

}  // namespace
}  // namespace workstation

extern "C" __attribute__((visibility("default"))) const workstation::RenderModule* vertana_render_module() {
  static const workstation::RenderModule module{workstation::renderModuleVersion, workstation::renderPicture,
                                                workstation::finish};
  return &module;
}
