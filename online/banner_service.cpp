#include "online/banner_service.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QTextBrowser>
#include <QTextDocument>
#include <QTimer>
#include <QUrl>
#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "online/desktop.h"
#include "online/xml_document.h"

namespace felthawk {

namespace {

// The largest picture a banner may decode to, in megabytes.
constexpr int kPictureAllocationMb = 16;

const XmlNode& NodeAt(const std::vector<XmlNode>& nodes, std::size_t index) {
    if (index >= nodes.size()) throw MissingNode{};
    return nodes[index];
}

const QString& DefaultPicture() {
    static const QString name = QStringLiteral("Default.gif");
    return name;
}

const QString& DefaultLink() {
    static const QString name =
        QStringLiteral("DefaultLink/Online Poker Games - PalisadePoker_com Poker Room.htm");
    return name;
}

// The timer's interval. Like the timer control the strip was designed for,
// 0 stops it, and a negative value is refused, leaving the interval as it was.
void SetInterval(QTimer& timer, int milliseconds) {
    if (milliseconds == 0)
        timer.stop();
    else if (milliseconds > 0)
        timer.setInterval(milliseconds);
}

}  // namespace

qint16 WholeNumber(const QString& text) {
    bool ok = false;
    const double value = text.trimmed().toDouble(&ok);
    if (!ok || !std::isfinite(value)) throw std::invalid_argument("not a number");
    const double rounded = std::nearbyint(value);  // the default mode: half to even
    if (rounded < -32768 || rounded > 32767) throw std::out_of_range("beyond 16 bits");
    return static_cast<qint16>(rounded);
}

bool IsWebUrl(const QUrl& url) {
    const QString scheme = url.scheme();
    return url.isValid() && (scheme == u"http" || scheme == u"https") && !url.host().isEmpty();
}

bool IsWebAddress(const QString& text) {
    return IsWebUrl(QUrl(text));
}

void ReadBannerList(const XmlDocument& document, Banners& banners) {
    const XmlNode& list = NodeAt(document.childNodes(), 0);
    const std::size_t count = std::min<std::size_t>(list.childNodes.size(), kMaxBanners);
    for (std::size_t i = 0; i < count; ++i) {
        const std::vector<XmlNode>& fields = list.childNodes[i].childNodes;
        Banner& banner = banners.Add(u'A' + QString::number(i));
        banner.Path = NodeAt(fields, 0).Text();
        banner.SmallPath = NodeAt(fields, 1).Text();
        banner.Duration = WholeNumber(NodeAt(fields, 2).Text());
        banner.Reference = NodeAt(fields, 3).Text();
    }
}

BannerService::BannerService(IDesktop& desktop, OnlineConfig config)
    : desktop_(desktop), config_(std::move(config)) {}

void BannerService::LoadBanners(QWidget* window, QTextBrowser* view, QTimer* timer) {
    if (loaded_ || !view || !timer) return;
    loaded_ = true;
    window_ = window;
    view_ = view;
    timer_ = timer;
    // A click leaves the strip for the desktop's browser; the view itself
    // never follows a banner's link.
    view->setOpenLinks(false);
    view->setOpenExternalLinks(false);
    connect(view, &QTextBrowser::anchorClicked, this, &BannerService::OpenBannerLink);
    connect(timer, &QTimer::timeout, this, &BannerService::Timer1);
    timer->setInterval(kFirstBannerMs);
    listInet_.OpenURL(config_.ServerUrl(QString::fromLatin1(kBannerListPath)), kBannerListLimits,
                      [this](const TransferResult& answer) { ListArrived(answer); });
}

void BannerService::ListArrived(const TransferResult& answer) {
    XmlDocument document;
    if (answer.ok) document.LoadXml(answer.body);
    bool complete = true;
    bool fault = false;
    try {
        ReadBannerList(document, banners_);
    } catch (const MissingNode&) {
        complete = false;
    } catch (const std::exception&) {
        // A bad Duration: the strip stays off.
        fault = true;
    }
    // A picture or a link from the server is used only when it is on the
    // web: a local file, a share or a script is not the server's to name.
    for (int i = 1; i <= banners_.Count(); ++i) {
        Banner& banner = banners_.Item(i);
        for (const QString* value : {&banner.Path, &banner.SmallPath, &banner.Reference}) {
            if (!value->isEmpty() && !IsWebAddress(*value)) {
                MakeDefault(banner);
                break;
            }
        }
    }
    if (fault) return;
    if (!complete) {
        // Nothing loaded, or a banner short of its fields: the default banner
        // stands in. Its key may clash with a banner read before the gap;
        // then the strip stays off like after any other fault.
        try {
            AddDefaultBanner();
        } catch (const std::exception&) {
            return;
        }
    }
    // The window may have gone while the list was on its way.
    if (timer_) timer_->start();
}

void BannerService::AddDefaultBanner() {
    Banner& banner = banners_.Add(QStringLiteral("A1"));
    MakeDefault(banner);
    banner.Duration = 30;
}

void BannerService::MakeDefault(Banner& banner) const {
    banner.Path = config_.FindFile(DefaultPicture());
    banner.SmallPath.clear();
    banner.Reference = config_.FindFile(DefaultLink());
}

void BannerService::Timer1() {
    if (position_ == 0) position_ = 1;
    if (banners_.Count() == 0 || !timer_) return;
    const Banner& banner = banners_.Item(position_);
    ShowBanner(SmallWindow() ? banner.SmallPath : banner.Path, banner.Reference);
    if (window_) {
        if (auto* picture = window_->findChild<QWidget*>(QStringLiteral("Picture1")))
            picture->show();
    }
    if (timer_) SetInterval(*timer_, banner.Duration * 1000);
    if (++position_ > banners_.Count()) position_ = 1;
}

bool BannerService::ShowBanner(const QString& fileName, const QString& refLink) {
    if (!view_) return false;
    // The values are data: a quote or a tag in them stays text.
    QString page = QString::fromLatin1(kBannerTemplate);
    page.replace(QStringLiteral("<<REFLINK>>"), refLink.toHtmlEscaped());
    page.replace(QStringLiteral("<<FILENAME>>"), fileName.toHtmlEscaped());

    const QString path = QDir(config_.programFolder).filePath(QStringLiteral("temp.htm"));
    QFile file(path);
    if (!QDir().mkpath(config_.programFolder) ||
        !file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text))
        return false;
    file.write((page + u'\n').toUtf8());
    file.close();

    // The view reads the page at once; a second visit to the same page must
    // read it again, since only the file behind it changed.
    const QUrl url = QUrl::fromLocalFile(path);
    if (view_->source() == url)
        view_->reload();
    else
        view_->setSource(url);
    shownPicture_ = fileName;
    if (IsWebAddress(fileName)) ProvideRemotePicture(fileName);
    return true;
}

void BannerService::ProvideRemotePicture(const QString& fileName) {
    // Each picture is asked for once: the list is never fetched again either,
    // and a dead picture server must not be waited for at every turn.
    if (pictures_.emplace(fileName, QImage()).second) {
        pictureQueue_.push_back(fileName);
        FetchNextPicture();
    } else {
        ShowPicture(fileName);
    }
}

void BannerService::FetchNextPicture() {
    if (pictureInet_.StillExecuting() || pictureQueue_.empty()) return;
    const QString next = pictureQueue_.front();
    pictureQueue_.pop_front();
    pictureInet_.OpenURL(next, kBannerPictureLimits, [this, next](const TransferResult& answer) {
        if (answer.ok) {
            QBuffer bytes;
            bytes.setData(answer.body);
            QImageReader reader(&bytes);
            // A small file may still claim a huge picture.
            reader.setAllocationLimit(kPictureAllocationMb);
            pictures_[next] = reader.read();
        }
        // A picture that never came leaves the banner broken; its link works.
        if (next == shownPicture_) ShowPicture(next);
        FetchNextPicture();
    });
}

void BannerService::ShowPicture(const QString& fileName) {
    const QImage& picture = pictures_[fileName];
    if (!view_ || picture.isNull()) return;
    QTextDocument* document = view_->document();
    document->addResource(QTextDocument::ImageResource, QUrl(fileName), picture);
    document->markContentsDirty(0, document->characterCount());
}

void BannerService::OpenBannerLink(const QUrl& link) {
    // The default banner's link is a page beside the program; any other
    // link is followed only onto the web. The page the links sit in is the
    // local temp.htm, so relative links resolve against it.
    const QUrl target = view_ ? view_->source().resolved(link) : link;
    if (IsWebUrl(target) || target == QUrl::fromLocalFile(config_.FindFile(DefaultLink())))
        desktop_.OpenUrl(target);
}

bool BannerService::SmallWindow() const {
    if (!window_) return false;
    const auto* strip = window_->findChild<QWidget*>(QStringLiteral("imgSmall"));
    return strip && strip->isVisibleTo(window_);
}

}  // namespace felthawk
