// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/keepPictures.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <deque>

#include <QDir>
#include <QString>
#include <gtest/gtest.h>

namespace {

// Enough to see what came before a failure, at any number of frames.
const std::size_t MOST = 6;

struct Seen
{
    int number;
    QImage found;
    QImage expected; // null if it was not compared
};

int strongest(QRgb a, QRgb b)
{
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                     std::abs(qBlue(a) - qBlue(b)), std::abs(qAlpha(a) - qAlpha(b))});
}

QImage differenceOf(const QImage& a, const QImage& b)
{
    QImage difference(a.size(), QImage::Format_RGB32);
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const int levels = strongest(a.pixel(x, y), b.pixel(x, y));
            const int grey = levels == 0 ? 0 : std::min(255, 85 + levels);
            difference.setPixel(x, y, qRgb(grey, grey, grey));
        }
    }
    return difference;
}

QString folderOf(const testing::TestInfo& test)
{
    QString suite = test.test_suite_name(), name = test.name();
    return QString(PICTURES_OUT) + "/" + suite.replace('/', '-') + "/" + name.replace('/', '-');
}

class Keeper : public testing::EmptyTestEventListener
{
public:
    void add(const QImage& found, const QImage& expected)
    {
        seen.push_back({++count, found, expected});
        if (seen.size() > MOST)
            seen.pop_front();
    }

private:
    void OnTestStart(const testing::TestInfo& test) override
    {
        seen.clear();
        count = 0;
        folder = QDir(folderOf(test));
        folder.removeRecursively();
    }

    // Not at the first failure only: others may be of other pictures.
    void OnTestPartResult(const testing::TestPartResult& result) override
    {
        if (!result.failed() || seen.empty() || !folder.mkpath("."))
            return;
        for (const Seen& pictures : seen)
            write(pictures);
        seen.clear();
        std::printf("The pictures are in %s\n", qPrintable(folder.path()));
    }

    void write(const Seen& pictures) const
    {
        const auto save = [&](const QImage& picture, const QString& name) {
            picture.save(folder.filePath(name + "-" + QString::number(pictures.number) + ".png"));
        };
        save(pictures.found, pictures.expected.isNull() ? "seen" : "found");
        if (pictures.expected.isNull())
            return;
        save(pictures.expected, "expected");
        if (pictures.expected.size() == pictures.found.size())
            save(differenceOf(pictures.found, pictures.expected), "difference");
    }

    QDir folder; // of the test; GoogleTest does not say which one while it tells of a failure
    std::deque<Seen> seen;
    int count = 0;
};

// GoogleTest owns it, and tells it the results after its own printer.
Keeper* makeKeeper()
{
    auto* keeper = new Keeper;
    testing::UnitTest::GetInstance()->listeners().Append(keeper);
    return keeper;
}

Keeper* const keeper = makeKeeper();

} // namespace

QImage keepIfFailed(const QImage& picture)
{
    if (!picture.isNull())
        keeper->add(picture, QImage());
    return picture;
}

void keepIfFailed(const QImage& found, const QImage& expected)
{
    if (!found.isNull())
        keeper->add(found, expected);
}
