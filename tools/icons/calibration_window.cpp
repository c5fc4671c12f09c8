#include "tools/icons/calibration_window.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

#include "capture/calibration.h"
#include "capture/client_layout.h"

namespace felthawk {
namespace {

constexpr int kMaxZoom = 8;
constexpr int kDefaultZoom = 2;
// Where the places stand before the user frames them: side by side.
constexpr int kFirstPlaceGap = 10;
constexpr int kPlaceGap = 40;
const QColor kPlaceColour(0, 220, 255);
const QColor kSelectedColour(255, 220, 0);

QString PlaceText(const CropRect& place) {
    return QStringLiteral("[%1, %2, %3, %4]")
        .arg(place.x)
        .arg(place.y)
        .arg(place.width)
        .arg(place.height);
}

QString Join(const std::vector<std::string>& cards) {
    QStringList list;
    for (const std::string& card : cards) list << QString::fromStdString(card);
    return list.join(' ');
}

}  // namespace

PlacesView::PlacesView(QWidget* parent) : QWidget(parent) {
    setFocusPolicy(Qt::StrongFocus);
    for (int cell = 0; cell < kSlotCount; ++cell) {
        places_[cell] = {kFirstPlaceGap + kPlaceGap * cell, kFirstPlaceGap, kCropWidth,
                         kCropHeight};
    }
}

void PlacesView::SetPicture(const QImage& picture) {
    picture_ = picture.convertToFormat(QImage::Format_RGB32);
    for (CropRect& place : places_) place = Fitted(place);
    SetZoom(zoom_);
    emit PlacesChanged();
}

void PlacesView::SetZoom(int zoom) {
    zoom_ = std::clamp(zoom, 1, kMaxZoom);
    setFixedSize(picture_.size() * zoom_);
    update();
    emit ZoomChanged(zoom_);
}

void PlacesView::Select(int cell) {
    selected_ = std::clamp(cell, 0, kSlotCount - 1);
    update();
    emit PlacesChanged();
}

void PlacesView::SetPlace(int cell, const CropRect& place) {
    places_.at(cell) = Fitted(place);
    update();
    emit PlacesChanged();
}

void PlacesView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.drawImage(QRect(QPoint(0, 0), picture_.size() * zoom_), picture_);
    painter.setBrush(Qt::NoBrush);
    for (int cell = 0; cell < kSlotCount; ++cell) {
        const CropRect& place = places_[cell];
        const QRect frame(place.x * zoom_, place.y * zoom_, place.width * zoom_,
                          place.height * zoom_);
        painter.setPen(QPen(cell == selected_ ? kSelectedColour : kPlaceColour, 1));
        painter.drawRect(frame.adjusted(-1, -1, 0, 0));  // just outside the place
        painter.drawText(frame.left(), frame.top() - 3,
                         QString::fromUtf8(SlotName(cell).data(), SlotName(cell).size()));
    }
}

QPoint PlacesView::PicturePoint(const QPoint& widgetPoint) const {
    return {widgetPoint.x() / zoom_, widgetPoint.y() / zoom_};
}

CropRect PlacesView::Fitted(CropRect place) const {
    place.width = std::clamp(place.width, 1, kPictureBoxWidth);
    place.height = std::clamp(place.height, 1, kPictureBoxHeight);
    place.x = std::clamp(place.x, 0, std::max(0, picture_.width() - place.width));
    place.y = std::clamp(place.y, 0, std::max(0, picture_.height() - place.height));
    return place;
}

void PlacesView::mousePressEvent(QMouseEvent* event) {
    setFocus();
    const QPoint at = PicturePoint(event->position().toPoint());
    auto inside = [&](int cell) {
        const CropRect& p = places_[cell];
        return QRect(p.x, p.y, p.width, p.height).contains(at);
    };
    int hit = inside(selected_) ? selected_ : -1;
    for (int cell = 0; cell < kSlotCount && hit < 0; ++cell) {
        if (inside(cell)) hit = cell;
    }
    if (hit >= 0) Select(hit);
    drag_ = hit >= 0 ? Drag::Move : Drag::Frame;
    dragStart_ = at;
    placeAtStart_ = places_[selected_];
    if (drag_ == Drag::Frame) SetPlace(selected_, {at.x(), at.y(), 1, 1});
}

void PlacesView::mouseMoveEvent(QMouseEvent* event) {
    const QPoint at = PicturePoint(event->position().toPoint());
    if (drag_ == Drag::Move) {
        const QPoint by = at - dragStart_;
        SetPlace(selected_, {placeAtStart_.x + by.x(), placeAtStart_.y + by.y(),
                             placeAtStart_.width, placeAtStart_.height});
    } else if (drag_ == Drag::Frame) {
        const QRect frame = QRect(dragStart_, at).normalized();
        SetPlace(selected_, {frame.x(), frame.y(), frame.width(), frame.height()});
    }
}

void PlacesView::mouseReleaseEvent(QMouseEvent*) {
    drag_ = Drag::None;
}

void PlacesView::keyPressEvent(QKeyEvent* event) {
    CropRect place = places_[selected_];
    const bool size = event->modifiers() & Qt::ShiftModifier;
    int& horizontal = size ? place.width : place.x;
    int& vertical = size ? place.height : place.y;
    switch (event->key()) {
        case Qt::Key_Left:
            --horizontal;
            break;
        case Qt::Key_Right:
            ++horizontal;
            break;
        case Qt::Key_Up:
            --vertical;
            break;
        case Qt::Key_Down:
            ++vertical;
            break;
        case Qt::Key_Plus:
        case Qt::Key_Equal:
            SetZoom(zoom_ + 1);
            return;
        case Qt::Key_Minus:
            SetZoom(zoom_ - 1);
            return;
        default:
            if (event->key() >= Qt::Key_1 && event->key() < Qt::Key_1 + kSlotCount) {
                Select(event->key() - Qt::Key_1);
                return;
            }
            QWidget::keyPressEvent(event);
            return;
    }
    SetPlace(selected_, place);
}

CalibrationWindow::CalibrationWindow(IWindowSystem& windows, std::filesystem::path layoutsFolder,
                                     QWidget* parent)
    : QWidget(parent), windows_(windows), layoutsFolder_(std::move(layoutsFolder)) {
    setWindowTitle(QStringLiteral("Felthawk - table layout"));

    windowList_ = new QComboBox;
    windowList_->setMinimumContentsLength(40);
    auto* refresh = new QPushButton(QStringLiteral("&Refresh"));
    auto* take = new QPushButton(QStringLiteral("&Take picture"));
    auto* top = new QHBoxLayout;
    top->addWidget(new QLabel(QStringLiteral("Client window:")));
    top->addWidget(windowList_, 1);
    top->addWidget(refresh);
    top->addWidget(take);

    layoutName_ = new QComboBox;
    layoutName_->setEditable(true);
    layoutName_->setObjectName(QStringLiteral("layoutName"));
    for (const std::string& name : ListLayouts(layoutsFolder_)) {
        if (name != kDefaultLayoutName) layoutName_->addItem(QString::fromStdString(name));
    }
    if (layoutName_->count() == 0) layoutName_->setEditText(QStringLiteral("my-client"));
    title_ = new QLineEdit(QString::fromUtf8(kDefaultTitlePattern.data()));
    meSeat_ = new QSpinBox;
    meSeat_->setRange(0, kSeatCount - 1);
    everySeat_ = new QCheckBox(QStringLiteral("My cards show here at every seat"));
    everySeat_->setChecked(true);
    zoom_ = new QSpinBox;
    zoom_->setRange(1, kMaxZoom);
    zoom_->setSuffix(QStringLiteral("x"));
    auto* second = new QHBoxLayout;
    second->addWidget(new QLabel(QStringLiteral("Layout:")));
    second->addWidget(layoutName_);
    second->addWidget(new QLabel(QStringLiteral("Title:")));
    second->addWidget(title_);
    second->addWidget(new QLabel(QStringLiteral("My seat:")));
    second->addWidget(meSeat_);
    second->addWidget(everySeat_);
    second->addWidget(new QLabel(QStringLiteral("Zoom:")));
    second->addWidget(zoom_);
    second->addStretch();

    view_ = new PlacesView;
    scroll_ = new QScrollArea;
    scroll_->setWidget(view_);
    scroll_->setMinimumSize(640, 360);

    placeList_ = new QListWidget;
    for (int cell = 0; cell < kSlotCount; ++cell) placeList_->addItem(QString());
    placeList_->setMaximumHeight(placeList_->sizeHintForRow(0) * (kSlotCount + 1));
    cardText_ = new QLineEdit;
    cardText_->setPlaceholderText(QStringLiteral("Type the card, e.g. AS, and Enter"));
    cardText_->setMaxLength(2);
    auto* deck = new QGridLayout;
    deck->setSpacing(1);
    for (int i = 0; i < kTemplateCount; ++i) {
        const QString card = QString::fromStdString(TemplateCard(i));
        auto* button = new QToolButton;
        button->setText(card);
        button->setObjectName(QStringLiteral("deck") + card);
        deck->addWidget(button, i / 13, i % 13);
        connect(button, &QToolButton::clicked, this, [this, card] { NameCard(card); });
    }
    auto* clear = new QPushButton(QStringLiteral("No card here"));
    auto* save = new QPushButton(QStringLiteral("&Save layout and templates"));
    auto* side = new QVBoxLayout;
    side->addWidget(
        new QLabel(QStringLiteral("Places (1-7 selects; arrows move, Shift+arrows "
                                  "size, + and - zoom):")));
    side->addWidget(placeList_);
    side->addWidget(new QLabel(QStringLiteral("The card in the selected place:")));
    side->addWidget(cardText_);
    side->addLayout(deck);
    side->addWidget(clear);
    side->addStretch();
    side->addWidget(save);

    auto* middle = new QHBoxLayout;
    middle->addWidget(scroll_, 1);
    middle->addLayout(side);
    status_ = new QLabel;
    status_->setWordWrap(true);
    status_->setTextFormat(Qt::PlainText);
    auto* all = new QVBoxLayout(this);
    all->addLayout(top);
    all->addLayout(second);
    all->addLayout(middle, 1);
    all->addWidget(status_);

    connect(refresh, &QPushButton::clicked, this, &CalibrationWindow::RefreshWindows);
    connect(take, &QPushButton::clicked, this, &CalibrationWindow::TakePicture);
    connect(save, &QPushButton::clicked, this, &CalibrationWindow::Save);
    connect(clear, &QPushButton::clicked, this, [this] { NameCard({}); });
    connect(cardText_, &QLineEdit::returnPressed, this, [this] {
        NameCard(cardText_->text());
        cardText_->clear();
    });
    connect(zoom_, &QSpinBox::valueChanged, view_, &PlacesView::SetZoom);
    connect(view_, &PlacesView::ZoomChanged, zoom_, &QSpinBox::setValue);
    connect(view_, &PlacesView::PlacesChanged, this, &CalibrationWindow::ShowPlaces);
    connect(placeList_, &QListWidget::currentRowChanged, view_, [this](int row) {
        if (row >= 0 && row != view_->Selected()) view_->Select(row);
    });
    connect(layoutName_, &QComboBox::textActivated, this, &CalibrationWindow::LoadLayout);
    connect(meSeat_, &QSpinBox::valueChanged, this,
            [this] { LoadLayout(layoutName_->currentText()); });

    view_->SetZoom(kDefaultZoom);
    if (layoutName_->count() > 0) LoadLayout(layoutName_->currentText());
    RefreshWindows();
    ShowPlaces();
    status_->setText(
        QStringLiteral("Pick the client, take a picture, frame the seven places "
                       "and name the cards on the table."));
}

void CalibrationWindow::RefreshWindows() {
    windowList_->clear();
    windowIds_.clear();
    TableLayout pattern = DefaultLayout();
    pattern.titlePattern = title_->text().toStdString();
    std::vector<std::pair<WindowId, std::string>> found = TitledWindows(windows_);
    std::stable_partition(found.begin(), found.end(),
                          [&](const auto& window) { return TitleMatches(pattern, window.second); });
    for (const auto& [window, title] : found) {
        windowIds_.push_back(window);
        windowList_->addItem(QString::fromStdString(title));
    }
}

void CalibrationWindow::TakePicture() {
    const int index = windowList_->currentIndex();
    if (index < 0 || index >= static_cast<int>(windowIds_.size())) {
        status_->setText(QStringLiteral("No window chosen."));
        return;
    }
    windows_.BringWindowToTop(windowIds_[index]);
    const QImage picture = windows_.GrabContent(windowIds_[index]).ToImage();
    if (picture.isNull()) {
        status_->setText(QStringLiteral("That window is gone; refresh the list."));
        return;
    }
    UsePicture(picture);
}

void CalibrationWindow::UsePicture(const QImage& picture) {
    view_->SetPicture(picture);
    status_->setText(
        QStringLiteral("Picture of %1 by %2 taken.").arg(picture.width()).arg(picture.height()));
}

void CalibrationWindow::NameCard(const QString& card) {
    const int cell = view_->Selected();
    cards_[cell] = card.trimmed().toUpper().toStdString();
    view_->Select((cell + 1) % kSlotCount);
}

int CalibrationWindow::SeatPoint() const {
    return everySeat_->isChecked() ? -1 : PreviousSeat(meSeat_->value());
}

void CalibrationWindow::LoadLayout(const QString& name) {
    std::string error;
    const std::optional<TableLayout> layout = FindLayout(name.toStdString(), layoutsFolder_, error);
    if (!layout || name == QLatin1String(kDefaultLayoutName.data())) return;
    title_->setText(QString::fromStdString(layout->titlePattern));
    const int previousSeat = PreviousSeat(meSeat_->value());
    everySeat_->setChecked(!layout->seatHoles[previousSeat]);
    for (int cell = 0; cell < kSlotCount; ++cell) {
        const std::optional<CropRect> place = CellPlace(*layout, cell, previousSeat);
        if (place) view_->SetPlace(cell, *place);
    }
    ShowMissing({});
}

void CalibrationWindow::ShowPlaces() {
    for (int cell = 0; cell < kSlotCount; ++cell) {
        const std::string_view slot = SlotName(cell);
        placeList_->item(cell)->setText(QStringLiteral("%1  %2  %3")
                                            .arg(QString::fromUtf8(slot.data(), slot.size()))
                                            .arg(PlaceText(view_->Places()[cell]))
                                            .arg(QString::fromStdString(cards_[cell])));
    }
    placeList_->setCurrentRow(view_->Selected());
}

void CalibrationWindow::ShowMissing(const QString& before) {
    std::string error;
    const std::optional<TableLayout> layout =
        FindLayout(layoutName_->currentText().toStdString(), layoutsFolder_, error);
    if (!layout) {
        status_->setText(before + QString::fromStdString(error));
        return;
    }
    const std::vector<std::string> missing =
        MissingTemplates(LayoutTemplateFolder(*layout, layoutsFolder_));
    status_->setText(before + (missing.empty() ? QStringLiteral("All 52 templates are there.")
                                               : QStringLiteral("Templates still missing (%1): %2")
                                                     .arg(missing.size())
                                                     .arg(Join(missing))));
}

bool CalibrationWindow::Save() {
    const std::string name = layoutName_->currentText().trimmed().toStdString();
    auto fail = [this](const QString& why) {
        status_->setText(QStringLiteral("Not saved: ") + why);
        return false;
    };
    if (view_->Picture().isNull())
        return fail(QStringLiteral("take a picture of the client first."));
    if (!IsLayoutName(name) || name == kDefaultLayoutName) {
        return fail(
            QStringLiteral("the layout needs a name of letters, digits, - and _, other "
                           "than \"default\"."));
    }
    TableLayout layout = MakeLayout(name, title_->text().toStdString(), view_->Picture().width(),
                                    view_->Picture().height(), view_->Places(), SeatPoint());
    layout = KeepSavedPlaces(std::move(layout), layoutsFolder_);
    std::string error;
    const std::filesystem::path templates = LayoutTemplateFolder(layout, layoutsFolder_);
    std::error_code created;
    std::filesystem::create_directories(templates, created);
    if (!SaveLayout(layout, layoutsFolder_, error)) return fail(QString::fromStdString(error));
    const std::optional<std::vector<std::string>> written = SaveTemplates(
        view_->Picture(), layout, PreviousSeat(meSeat_->value()), cards_, templates, error);
    if (!written)
        return fail(QStringLiteral("layout saved, but no template: ") +
                    QString::fromStdString(error));
    if (layoutName_->findText(QString::fromStdString(name)) < 0) {
        layoutName_->addItem(QString::fromStdString(name));
    }
    cards_ = {};
    ShowPlaces();
    ShowMissing(QStringLiteral("Saved layout %1 with %2 new templates (%3). ")
                    .arg(QString::fromStdString(name))
                    .arg(written->size())
                    .arg(Join(*written)));
    return true;
}

QString CalibrationWindow::Status() const {
    return status_->text();
}

}  // namespace felthawk
