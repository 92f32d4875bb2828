#include "desktop/HostText.hpp"

#include <QAbstractTextDocumentLayout>
#include <QFontMetrics>
#include <QLabel>
#include <QResizeEvent>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>
#include <cmath>

namespace OrvelGui {
namespace {

// A label wide enough that a usual sentence stays on one or two lines.
constexpr int kPreferredWidth = 480;

QString fromUtf8(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QTextCharFormat markFormat()
{
    // Dark red on amber: no document text is drawn so, and it does not rely
    // on the colour alone (the brackets and "U+" say what it is).
    QTextCharFormat format;
    format.setBackground(QColor(0xff, 0xe0, 0x8a));
    format.setForeground(QColor(0x7a, 0x00, 0x00));
    format.setFontWeight(QFont::Bold);
    return format;
}

} // namespace

QString plainText(const VisibleText &text)
{
    return fromUtf8(text.text);
}

QString shownOnOneLine(std::string_view outside)
{
    return plainText(visibleText(outside, LineBreaks::Mark));
}

void setVisibleText(QTextDocument *document, const VisibleText &text)
{
    document->clear();
    if (text.marks.empty()) {
        document->setPlainText(plainText(text));
        return;
    }
    QTextCursor cursor(document);
    cursor.beginEditBlock();
    insertVisibleText(cursor, text);
    cursor.endEditBlock();
}

void insertVisibleText(QTextCursor &cursor, const VisibleText &text, const QFont *font)
{
    QTextCharFormat plain;
    QTextCharFormat mark = markFormat();
    if (font) {
        plain.setFont(*font);
        mark.setFontFamilies(font->families());
    }
    forEachPiece(text, [&](std::string_view piece, bool isMark) {
        cursor.insertText(fromUtf8(piece), isMark ? mark : plain);
    });
}

QLabel *warningLabel(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setText(text);
    label->setWordWrap(true);
    label->setStyleSheet(QStringLiteral("color: #b00000; font-weight: bold"));
    label->setAccessibleName(text);
    return label;
}

QLabel *hiddenCharactersWarning(const Texts &t, std::size_t count, QWidget *parent)
{
    if (count == 0)
        return nullptr;
    QLabel *label = warningLabel(QString::fromUtf8(fill(t.hiddenCharacters, {std::to_string(count)})), parent);
    label->setObjectName(QStringLiteral("hiddenCharactersWarning"));
    return label;
}

HostText::HostText(const VisibleText &text, QWidget *parent, int maxLines) : QTextEdit(parent), maxLines_(maxLines)
{
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setFrameShape(QFrame::NoFrame);
    setLineWrapMode(QTextEdit::WidgetWidth);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setTabChangesFocus(true);
    // A label's background, not an input field's.
    QPalette colours = palette();
    colours.setColor(QPalette::Base, colours.color(QPalette::Window));
    setPalette(colours);
    document()->setDocumentMargin(1);
    setVisibleText(document(), text);
    moveCursor(QTextCursor::Start);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void HostText::setText(const VisibleText &text)
{
    setVisibleText(document(), text);
    moveCursor(QTextCursor::Start);
    updateGeometry();
}

void HostText::setFirstLineBold()
{
    QTextCursor cursor(document());
    cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
    QTextCharFormat bold;
    bold.setFontWeight(QFont::Bold);
    cursor.mergeCharFormat(bold);
}

int HostText::maxHeight() const
{
    return maxLines_ * fontMetrics().lineSpacing() + 2 * frameWidth() + 4;
}

int HostText::heightForWidth(int width) const
{
    QTextDocument *text = document();
    const qreal saved = text->textWidth();
    text->setTextWidth(std::max(width - 2 * frameWidth(), 1));
    const int height = static_cast<int>(std::ceil(text->size().height())) + 2 * frameWidth();
    text->setTextWidth(saved);
    return std::min(height, maxHeight());
}

int HostText::preferredWidth() const
{
    // The widest line, measured up to where it is wider than wanted anyway.
    const QFontMetrics metrics(font());
    const qsizetype enough = kPreferredWidth / std::max(metrics.averageCharWidth(), 1) * 2;
    int natural = 0;
    for (const QString &line : toPlainText().split(QChar::ParagraphSeparator))
        for (const QString &part : line.split(QLatin1Char('\n')))
            natural = std::max(natural, metrics.horizontalAdvance(part.left(enough)));
    // Bold markers are a little wider than the text they are measured as.
    natural = natural * 11 / 10 + 2 * frameWidth() + 8;
    return std::max(std::min(natural, kPreferredWidth), metrics.averageCharWidth() * 4);
}

// Never narrower than its preferred width, and as tall as the text is at
// the width it has (fewer lines once it is wider).
QSize HostText::sizeHint() const
{
    const int preferred = preferredWidth();
    return {preferred, heightForWidth(std::max(width(), preferred))};
}

QSize HostText::minimumSizeHint() const
{
    const int preferred = preferredWidth();
    return {preferred, heightForWidth(preferred)};
}

void HostText::resizeEvent(QResizeEvent *event)
{
    QTextEdit::resizeEvent(event);
    if (event->size().width() != event->oldSize().width())
        updateGeometry();
}

} // namespace OrvelGui
