#include "online/banner_service.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QTextBrowser>
#include <QTextDocument>
#include <QTimer>
#include <QUrl>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "online/desktop.h"
#include "online/xml_document.h"

namespace felthawk {

namespace {

const XmlNode& NodeAt(const std::vector<XmlNode>& nodes, std::size_t index) {
    if (index >= nodes.size()) throw MissingNode{};
    return nodes[index];
}

bool IsRemotePicture(const QString& fileName) {
    return fileName.startsWith(u"http://", Qt::CaseInsensitive) ||
           fileName.startsWith(u"https://", Qt::CaseInsensitive);
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

void ReadBannerList(const XmlDocument& document, Banners& banners) {
    const XmlNode& list = NodeAt(document.childNodes(), 0);
    for (std::size_t i = 0; i < list.childNodes.size(); ++i) {
        const std::vector<XmlNode>& fields = list.childNodes[i].childNodes;
        Banner& banner = banners.Add(u'A' + QString::number(i));
        banner.Path = NodeAt(fields, 0).Text();
        banner.SmallPath = NodeAt(fields, 1).Text();
        banner.Duration = WholeNumber(NodeAt(fields, 2).Text());
        banner.Reference = NodeAt(fields, 3).Text();
    }
}

BannerService::BannerService(IDesktop& desktop, OnlineConfig config)
    : desktop_(desktop), config_(std::move(config)), inet_(config_.fetchTimeoutMs) {}

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

    XmlDocument document;
    document.Load(config_.ServerUrl(QString::fromLatin1(kBannerListPath)), inet_);
    QCoreApplication::processEvents();
    try {
        ReadBannerList(document, banners_);
    } catch (const MissingNode&) {
        // Nothing loaded, or a banner short of its fields: the default banner
        // stands in. Its key may clash with a banner read before the gap;
        // then the strip stays off like after any other fault.
        try {
            AddDefaultBanner();
        } catch (const std::exception&) {
            return;
        }
    } catch (const std::exception&) {
        return;
    }
    // The window may have gone while the list was on its way.
    if (timer_) timer_->start();
}

void BannerService::AddDefaultBanner() {
    Banner& banner = banners_.Add(QStringLiteral("A1"));
    banner.Path = config_.FindFile(QStringLiteral("Default.gif"));
    banner.Duration = 30;
    banner.Reference = config_.FindFile(
        QStringLiteral("DefaultLink/Online Poker Games - PalisadePoker_com Poker Room.htm"));
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
    QString page = QString::fromLatin1(kBannerTemplate);
    page.replace(QStringLiteral("<<REFLINK>>"), refLink);
    page.replace(QStringLiteral("<<FILENAME>>"), fileName);

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
    if (IsRemotePicture(fileName)) ProvideRemotePicture(fileName);
    return true;
}

void BannerService::ProvideRemotePicture(const QString& fileName) {
    // Each picture is fetched once: the list is never fetched again either,
    // and a dead picture server must not hold the window at every turn.
    auto cached = pictures_.find(fileName);
    if (cached == pictures_.end()) {
        QImage picture;
        try {
            picture = QImage::fromData(inet_.OpenURL(fileName));
        } catch (const TransferError&) {
            // The picture stays broken; the banner's link still works.
        }
        cached = pictures_.emplace(fileName, picture).first;
    }
    if (cached->second.isNull()) return;
    QTextDocument* document = view_->document();
    document->addResource(QTextDocument::ImageResource, QUrl(fileName), cached->second);
    document->markContentsDirty(0, document->characterCount());
}

void BannerService::OpenBannerLink(const QUrl& link) {
    // The default banner's link is a path beside the program; the page it
    // sits in is the local temp.htm, so relative links resolve against it.
    desktop_.OpenUrl(view_ ? view_->source().resolved(link) : link);
}

bool BannerService::SmallWindow() const {
    if (!window_) return false;
    const auto* strip = window_->findChild<QWidget*>(QStringLiteral("imgSmall"));
    return strip && strip->isVisibleTo(window_);
}

}  // namespace felthawk
