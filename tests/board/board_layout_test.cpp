// Every caption fits its control: each label of the board, the strip and
// About, with the longest text it can show, measured with its own font, on
// a desktop of 96 and one of 120 dots per inch (whose point-sized fonts come
// out a quarter larger). The cards of the table lie inside its card frame.
#include <set>

#include <QApplication>
#include <QLayout>

#include "board/info_forms.h"
#include "board/layout.h"
#include "cards/suggestion.h"
#include "tests/board/board_fixture.h"

namespace felthawk::testing {
namespace {

// The texts a label shows besides its caption at start.
std::vector<QString> LongTexts(const QLabel& label) {
    const QString name = label.objectName();
    std::vector<QString> texts{label.text()};
    if (name == "lblSuggestion" || name == "LBLSUG") {
        std::set<std::string_view> advice;
        for (int stage : {kSuggestPreFlop, kSuggestAfterFlop}) {
            for (int score = 0; score <= 255; ++score) {
                if (auto text = SuggestionText(static_cast<uint8_t>(score), stage))
                    advice.insert(*text);
            }
        }
        for (std::string_view text : advice)
            texts.push_back(QString::fromUtf8(text.data(), text.size()));
    } else if (name == "lP") {
        texts.insert(texts.end(), {"Current", "0100 %"});
    } else if (name == "l_Me" || name == "LBLPERCENTSMALL" || name == "l_Them") {
        texts.push_back("100 %");
    }
    return texts;
}

// Why `text` does not fit `label`, or "" when it does.
std::string Misfit(QLabel& label, const QString& text) {
    const QString kept = label.text();
    label.setText(text);
    const QRect room = label.contentsRect();
    const QFontMetrics metrics = label.fontMetrics();
    std::string why;
    if (label.wordWrap()) {
        const int needed = label.heightForWidth(label.width());
        if (needed > label.height()) {
            why = "needs " + std::to_string(needed) + " px of height, has " +
                  std::to_string(label.height());
        }
    } else if (metrics.horizontalAdvance(text) > room.width() || metrics.height() > room.height()) {
        why = "needs " + std::to_string(metrics.horizontalAdvance(text)) + " x " +
              std::to_string(metrics.height()) + " px, has " + std::to_string(room.width()) +
              " x " + std::to_string(room.height());
    }
    label.setText(kept);
    return why;
}

void ExpectAllFit(QWidget& window) {
    for (QLabel* label : window.findChildren<QLabel*>()) {
        if (dynamic_cast<PictureBox*>(label) != nullptr || !label->pixmap().isNull()) continue;
        for (const QString& text : LongTexts(*label)) {
            if (text.isEmpty()) continue;
            EXPECT_EQ(Misfit(*label, text), "")
                << label->objectName().toStdString() << " \"" << text.toStdString() << "\"";
        }
    }
}

TEST_F(BoardTest, EveryCaptionFitsItsLabelAt96And120Dpi) {
    const QFont desktop = QApplication::font();
    for (int dpi : {96, 120}) {
        SCOPED_TRACE(std::to_string(dpi) + " dpi");
        QFont font = desktop;
        font.setPixelSize(qRound(desktop.pointSizeF() * dpi / 72.0));
        QApplication::setFont(font);
        Start();
        ExpectAllFit(*form);
        frmAbout about;
        about.show();
        ExpectAllFit(about);
        about.hide();
    }
    QApplication::setFont(desktop);
}

TEST_F(BoardTest, TheCommunityCardsLieInsideTheCardFrame) {
    Start();
    const QRect frame = TwipRect(kCommunityFrame.left(), kCommunityFrame.top(),
                                 kCommunityFrame.width(), kCommunityFrame.height());
    for (int n = 3; n <= kCellCount; ++n) {
        EXPECT_TRUE(frame.contains(form->CellImage(n)->geometry())) << "IM(" << n << ")";
    }
}

}  // namespace
}  // namespace felthawk::testing
