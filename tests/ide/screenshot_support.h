// Looking at grabbed pixels: where a text range is drawn in an editor and how much of a rectangle has a
// colour. Images are saved for a person to look at when VELKOR_SCREENSHOT_DIR names a folder.
#pragma once

#include "editor/syntax_edit.h"

#include <QColor>
#include <QImage>
#include <QRect>
#include <QString>

#include <cstdlib>

namespace velkor::test {

inline void KeepScreenshot(const QImage& image, const char* name) {
    if (const char* dir = std::getenv("VELKOR_SCREENSHOT_DIR"))
        image.save(QString::fromLocal8Bit(dir) + u'/' + QString::fromLatin1(name));
}

// The rectangle of a text range of one line in the editor's viewport.
inline QRect TextRect(TSyntaxEdit& memo, int line, int from, int to) {
    const long start = memo.positionFromLineIndex(line, from);
    const long end = memo.positionFromLineIndex(line, to);
    const auto x = [&](long position) {
        return static_cast<int>(memo.SendScintilla(QsciScintillaBase::SCI_POINTXFROMPOSITION, 0UL, position));
    };
    const int y = static_cast<int>(memo.SendScintilla(QsciScintillaBase::SCI_POINTYFROMPOSITION, 0UL, start));
    const int h = static_cast<int>(memo.SendScintilla(QsciScintillaBase::SCI_TEXTHEIGHT, 0UL));
    return QRect(x(start), y, x(end) - x(start), h);
}

// How many pixels of the rectangle are within `tolerance` (sum of channel differences) of the colour.
inline int PixelsNear(const QImage& image, const QRect& rect, const QColor& colour, int tolerance = 40) {
    int count = 0;
    const QRect inside = rect.intersected(image.rect());
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        for (int x = inside.left(); x <= inside.right(); ++x) {
            const QColor c = image.pixelColor(x, y);
            if (std::abs(c.red() - colour.red()) + std::abs(c.green() - colour.green()) +
                    std::abs(c.blue() - colour.blue()) <=
                tolerance)
                ++count;
        }
    }
    return count;
}

inline QImage GrabEditor(TSyntaxEdit& memo) {
    memo.viewport()->repaint();
    return memo.viewport()->grab().toImage();
}

} // namespace velkor::test
