// The calibration window of felthawk-icons: pick the client among the
// windows, take a picture of its content, frame the seven card places on
// it, name the cards it shows, and save the layout with their templates.
// Deal after deal the templates fill up; the window says which are missing.
#pragma once

#include <QImage>
#include <QWidget>
#include <array>
#include <filesystem>
#include <functional>

#include "capture/table_layout.h"
#include "capture/window_system.h"
#include "cards/recalculate.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QScrollArea;
class QSpinBox;

namespace felthawk {

// The picture at a whole-number zoom with the seven places over it. A drag
// on the picture frames the selected place anew, a drag inside a place
// moves it; the arrow keys move it by one pixel, with Shift they change
// its size by one pixel; + and - zoom.
class PlacesView : public QWidget {
    Q_OBJECT
  public:
    explicit PlacesView(QWidget* parent = nullptr);

    void SetPicture(const QImage& picture);
    const QImage& Picture() const { return picture_; }
    void SetZoom(int zoom);
    int Zoom() const { return zoom_; }
    void Select(int cell);
    int Selected() const { return selected_; }
    void SetPlace(int cell, const CropRect& place);
    const std::array<CropRect, kSlotCount>& Places() const { return places_; }

  signals:
    void PlacesChanged();
    void ZoomChanged(int zoom);

  protected:
    void paintEvent(QPaintEvent*) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    QPoint PicturePoint(const QPoint& widgetPoint) const;
    // Keeps the place on the picture and within the largest crop.
    CropRect Fitted(CropRect place) const;

    QImage picture_;
    int zoom_ = 1;
    int selected_ = 0;
    std::array<CropRect, kSlotCount> places_{};
    enum class Drag { None, Frame, Move } drag_ = Drag::None;
    QPoint dragStart_;
    CropRect placeAtStart_;
};

class CalibrationWindow : public QWidget {
    Q_OBJECT
  public:
    // `layoutsFolder` is where layouts and their templates are saved.
    CalibrationWindow(IWindowSystem& windows, std::filesystem::path layoutsFolder,
                      QWidget* parent = nullptr);

    // Lists the windows with a title, the client's first.
    void RefreshWindows();
    // Takes a picture of the chosen window's content.
    void TakePicture();
    // Uses this picture instead, as if taken of a window of that title.
    void UsePicture(const QImage& picture);
    // Names the card that the selected place shows: "AS", or "" for none;
    // the next place is selected.
    void NameCard(const QString& card);
    // Saves the layout and the templates of the named cards; false with the
    // reason in the status line.
    bool Save();

    PlacesView* View() const { return view_; }
    QString Status() const;
    const TextCells& Cards() const { return cards_; }

  private:
    void LoadLayout(const QString& name);
    void ShowPlaces();
    void ShowMissing(const QString& before);
    int SeatPoint() const;

    IWindowSystem& windows_;
    std::filesystem::path layoutsFolder_;
    std::vector<WindowId> windowIds_;
    TextCells cards_;

    QComboBox* windowList_;
    QComboBox* layoutName_;
    QLineEdit* title_;
    QSpinBox* meSeat_;
    QCheckBox* everySeat_;
    QListWidget* placeList_;
    QLineEdit* cardText_;
    QSpinBox* zoom_;
    QScrollArea* scroll_;
    PlacesView* view_;
    QLabel* status_;
};

}  // namespace felthawk
