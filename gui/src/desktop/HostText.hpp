// Outside text in the desktop's views (VisibleText.hpp): markers are drawn in
// a box of their own colour, apart from the text, and long words (a path) wrap
// inside rather than widen the window.
#pragma once

#include "common/Texts.hpp"
#include "common/VisibleText.hpp"

#include <QString>
#include <QTextEdit>

class QLabel;
class QTextDocument;
class QWidget;

namespace OrvelGui {

// The text alone, markers as their text (for a title, a tooltip, a cell).
QString plainText(const VisibleText &text);

// Fills a document with the text, its marks in the marker's format.
void setVisibleText(QTextDocument *document, const VisibleText &text);

// A red warning in bold above the text it is about; nothing without cause.
QLabel *warningLabel(const QString &text, QWidget *parent);
QLabel *hiddenCharactersWarning(const Texts &t, std::size_t count, QWidget *parent);

// A read-only text that looks like a label: as tall as its text for the
// width it gets, up to `maxLines` lines (then it scrolls); words wrap, and
// one longer than a line wraps inside.
class HostText : public QTextEdit {
    Q_OBJECT
public:
    HostText(const VisibleText &text, QWidget *parent, int maxLines = 12);
    void setText(const VisibleText &text);
    // Makes the first line bold (a name above its details).
    void setFirstLineBold();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    int maxHeight() const;
    int maxLines_;
};

} // namespace OrvelGui
