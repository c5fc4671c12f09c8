// The advertising strip: the banner list from the server, or the default
// banner beside the program, shown one after the other in the main window's
// banner view, each for its own time.
#pragma once

#include <QImage>
#include <QObject>
#include <QPointer>
#include <QString>
#include <deque>
#include <map>

#include "board/services.h"
#include "online/banners.h"
#include "online/online_config.h"
#include "online/transfer.h"

class QUrl;

namespace felthawk {

class IDesktop;
class XmlDocument;

// The banner list on the server.
inline constexpr char kBannerListPath[] = "member/banners/banner.php";
// Timer1 shows the first banner this long after the list is loaded.
inline constexpr int kFirstBannerMs = 1000;
// Banners past this many in the list are not read.
inline constexpr int kMaxBanners = 1000;
// The page every banner is shown through.
inline constexpr char kBannerTemplate[] =
    R"(<html><a href="<<REFLINK>>" target="_blank" ><img border="0" src="<<FILENAME>>"></a></html>)";

// A whole number of seconds as the banner list writes it: blanks around it,
// a fraction rounded half to even. Throws std::invalid_argument for a text
// that is no number and std::out_of_range beyond 16 bits.
qint16 WholeNumber(const QString& text);

// Fills `banners` from a loaded list: the children of the document's first
// node, one per banner up to kMaxBanners, each with Path, SmallPath,
// Duration and Reference as its first four children, read by position.
// Throws MissingNode where a node is absent (as in an empty document), other
// exceptions for a bad Duration; what was added up to then stays.
struct MissingNode {};
void ReadBannerList(const XmlDocument& document, Banners& banners);

// True for an absolute http or https address with a host: the only pictures
// and links a banner from the server may use.
bool IsWebAddress(const QString& text);
bool IsWebUrl(const QUrl& url);

class BannerService : public QObject, public IBannerService {
    Q_OBJECT
  public:
    BannerService(IDesktop& desktop, OnlineConfig config);

    // Once only: starts fetching the list and returns; once the list (or
    // the default banner, when it cannot be had) is in, starts `timer`.
    void LoadBanners(QWidget* window, QTextBrowser* view, QTimer* timer) override;
    // True while the list is on its way.
    bool Loading() const { return listInet_.StillExecuting(); }

    // One tick of Timer1: show the banner at the position, take its
    // Duration as the next interval, move on.
    void Timer1();

    // Writes the banner page to temp.htm in the program's folder, every value
    // escaped, and shows it in the view. False when it could not be shown;
    // nothing is said.
    bool ShowBanner(const QString& fileName, const QString& refLink);

    const Banners& List() const { return banners_; }

  private:
    void ListArrived(const TransferResult& answer);
    // The default banner beside the program, when the list cannot be read.
    void AddDefaultBanner();
    // The default banner's picture and link in place of a banner whose own
    // are not web addresses.
    void MakeDefault(Banner& banner) const;
    // The picture of a remote banner, fetched once and handed to the view.
    void ProvideRemotePicture(const QString& fileName);
    void FetchNextPicture();
    void ShowPicture(const QString& fileName);
    void OpenBannerLink(const QUrl& link);
    // The window shows the compact strip rather than the full board.
    bool SmallWindow() const;

    IDesktop& desktop_;
    OnlineConfig config_;
    Inet listInet_;
    Inet pictureInet_;
    Banners banners_;
    // Remote pictures by URL; a null image for one that could not be had
    // or is still on its way.
    std::map<QString, QImage> pictures_;
    // Pictures waiting for their fetch, one at a time, oldest first.
    std::deque<QString> pictureQueue_;
    // The picture on show, which a late arrival replaces.
    QString shownPicture_;
    // A fresh form's position is 0; the first tick makes it 1. Never above
    // the count, which kMaxBanners bounds.
    int position_ = 0;
    bool loaded_ = false;
    QPointer<QWidget> window_;
    QPointer<QTextBrowser> view_;
    QPointer<QTimer> timer_;
};

}  // namespace felthawk
