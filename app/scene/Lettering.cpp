// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/Lettering.h"

#include <algorithm>
#include <array>
#include <clocale>
#include <cmath>

#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

namespace strandview {

namespace {

// Of the shapes, in Qt's pixels: curves become chords that are off by a fraction of one.
const int PIXELS = 256;

// The present locale's numbers, which an application object changes to the user's.
class LocaleKeeper
{
public:
    LocaleKeeper() : before(std::setlocale(LC_ALL, nullptr)) {}
    ~LocaleKeeper() { std::setlocale(LC_ALL, before.c_str()); }
    LocaleKeeper(const LocaleKeeper&) = delete;
    LocaleKeeper& operator=(const LocaleKeeper&) = delete;

private:
    std::string before;
};

void ignoreMessage(QtMsgType /*type*/, const QMessageLogContext& /*context*/,
                   const QString& /*text*/)
{}

// For text alone: without a display, and silent about what only windows need. Of the two
// platforms of Qt that need none, "offscreen" leaves memory behind.
std::shared_ptr<QGuiApplication> makeApplication()
{
    // Kept by Qt, which takes out what it understands.
    static char name[] = "strandview", option[] = "-platform", platform[] = "minimal:enable_fonts";
    static char* arguments[4];
    static int count;
    std::copy_n(std::array<char*, 4>{name, option, platform, nullptr}.begin(), 4, arguments);
    count = 3;
    const LocaleKeeper locale;
    const QtMessageHandler before = qInstallMessageHandler(ignoreMessage);
    auto application = std::make_shared<QGuiApplication>(count, arguments);
    qInstallMessageHandler(before);
    return application;
}

// That of all letters that live; null where the program has one.
std::shared_ptr<QGuiApplication> getApplication()
{
    static std::weak_ptr<QGuiApplication> ours;
    std::shared_ptr<QGuiApplication> application = ours.lock();
    if (!application && !QCoreApplication::instance())
        ours = application = makeApplication();
    return application;
}

QString toLine(const std::string& text)
{
    QString line = QString::fromStdString(text);
    for (QChar& character : line) {
        if (!character.isPrint() && !character.isSurrogate())
            character = ' ';
    }
    return line;
}

// A side of an outline that is not level, from its lower end to its upper one.
struct Side
{
    double x0, y0, x1, y1;
    int winding; ///< 1 if the outline runs upwards there, otherwise -1

    double at(double y) const { return x0 + (x1 - x0) * (y - y0) / (y1 - y0); }
};

// Outlines that lie over each other, such as those of one letter.
struct Cluster
{
    double right;
    std::vector<Side> sides;
};

// Upwards, and on a grid fine enough not to be seen: ends that should be level are so.
QPointF placed(const QPointF& point)
{
    const double grid = 64;
    return {point.x(), -std::round(point.y() * grid) / grid};
}

void addSides(const QPolygonF& outline, std::vector<Side>& sides)
{
    for (int i = 0; i < outline.size(); ++i) {
        const QPointF a = placed(outline[i]), b = placed(outline[(i + 1) % outline.size()]);
        if (a.y() < b.y())
            sides.push_back({a.x(), a.y(), b.x(), b.y(), 1});
        else if (b.y() < a.y())
            sides.push_back({b.x(), b.y(), a.x(), a.y(), -1});
    }
}

// From left to right.
std::vector<Cluster> clustersOf(QList<QPolygonF> outlines)
{
    const auto left = [](const QPolygonF& outline) { return outline.boundingRect().left(); };
    std::sort(outlines.begin(), outlines.end(),
              [&](const QPolygonF& a, const QPolygonF& b) { return left(a) < left(b); });
    std::vector<Cluster> clusters;
    for (const QPolygonF& outline : outlines) {
        const double right = outline.boundingRect().right();
        if (clusters.empty() || clusters.back().right < left(outline))
            clusters.push_back({right, {}});
        clusters.back().right = std::max(clusters.back().right, right);
        addSides(outline, clusters.back().sides);
    }
    return clusters;
}

// Cuts the inside of the outlines into trapezoids, at the height of every corner; inside is
// where the outlines wind around.
void addTrapezoids(const std::vector<Side>& sides, std::vector<SbVec2f>& corners)
{
    std::vector<double> heights;
    for (const Side& side : sides) {
        heights.push_back(side.y0);
        heights.push_back(side.y1);
    }
    std::sort(heights.begin(), heights.end());
    heights.erase(std::unique(heights.begin(), heights.end()), heights.end());

    const auto corner = [](double x, double y) {
        return SbVec2f(float(x / PIXELS), float(y / PIXELS));
    };
    for (std::size_t i = 0; i + 1 < heights.size(); ++i) {
        const double low = heights[i], high = heights[i + 1], middle = (low + high) / 2;
        std::vector<Side> across;
        std::copy_if(sides.begin(), sides.end(), std::back_inserter(across),
                     [&](const Side& side) { return side.y0 <= low && side.y1 >= high; });
        std::sort(across.begin(), across.end(),
                  [middle](const Side& a, const Side& b) { return a.at(middle) < b.at(middle); });
        int winding = 0;
        const Side* from = nullptr;
        for (const Side& side : across) {
            if (winding == 0)
                from = &side;
            winding += side.winding;
            if (winding != 0)
                continue;
            corners.insert(corners.end(),
                           {corner(from->at(low), low), corner(side.at(low), low),
                            corner(side.at(high), high), corner(from->at(high), high)});
        }
    }
}

// Letters that a program draws on its screen, a quarter of a pixel farther right or two or three,
// leave the outlines of the same typeface moved by that part of a unit of its design. Of DejaVu
// Sans all points are at whole units.
void undoMove(QPainterPath& path)
{
    const double unit = PIXELS / 2048.0;
    if (path.isEmpty())
        return;
    const double moved = std::fmod(path.elementAt(0).x, unit) / unit;
    if (moved == 0.25 || moved == 0.5 || moved == 0.75)
        path.translate(-moved * unit, 0);
}

} // namespace

Lettering::Lettering() : application(getApplication())
{
    font = std::make_unique<QFont>("DejaVu Sans"); // or what the system has instead
    font->setPixelSize(PIXELS);
    font->setHintingPreference(QFont::PreferNoHinting);
}

Lettering::~Lettering()
{
    font.reset(); // before the application
}

double Lettering::getWidth(const std::string& text) const
{
    return QFontMetricsF(*font).horizontalAdvance(toLine(text)) / PIXELS;
}

std::string Lettering::elide(const std::string& text, double width) const
{
    return QFontMetricsF(*font)
        .elidedText(toLine(text), Qt::ElideRight, width * PIXELS)
        .toStdString();
}

std::vector<SbVec2f> Lettering::getShape(const std::string& text) const
{
    QPainterPath path;
    path.addText(0, 0, *font, toLine(text));
    undoMove(path);
    std::vector<SbVec2f> corners;
    for (const Cluster& cluster : clustersOf(path.toSubpathPolygons()))
        addTrapezoids(cluster.sides, corners);
    return corners;
}

QImage Lettering::getPlate(const std::string& text, int pixels, const QColor& ink,
                           const QColor& plate) const
{
    const QString line = toLine(text);
    QFont sized = *font;
    sized.setPixelSize(pixels);
    const QFontMetricsF metrics(sized);
    const int margin = std::max(pixels / 4, 1);
    const int width = int(std::ceil(metrics.horizontalAdvance(line))) + 2 * margin,
              height = int(std::ceil(metrics.height())) + margin;
    QImage image(width, height, QImage::Format_RGBA8888);
    image.fill(Qt::transparent);
    QPainterPath letters;
    letters.addText(margin, margin / 2.0 + metrics.ascent(), sized, line);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(plate);
    painter.drawRoundedRect(QRectF(image.rect()), margin, margin);
    painter.setBrush(ink);
    painter.drawPath(letters);
    return image;
}

} // namespace strandview
