#include "capture/xcb_window_system.h"

#include <sys/ipc.h>
#include <sys/shm.h>
#include <xcb/shm.h>
#include <xcb/xcb.h>

#include <QGuiApplication>
#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>

namespace felthawk {
namespace {

// Titles are read into a buffer of 255 characters, the terminator included,
// so at most 254 characters of a title take part in the search.
constexpr int kTitleCharacters = 254;
constexpr uint32_t kPropertyLongs = 256;

template <typename T>
using Reply = std::unique_ptr<T, decltype(&std::free)>;

template <typename T>
Reply<T> Take(T* reply) {
    return Reply<T>(reply, &std::free);
}

xcb_atom_t InternAtom(xcb_connection_t* c, const char* name) {
    auto reply = Take(xcb_intern_atom_reply(
        c, xcb_intern_atom(c, 0, static_cast<uint16_t>(std::strlen(name)), name), nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

// The lowest set bit and the width of a colour mask of the visual.
struct Channel {
    int shift = 0;
    int bits = 0;
    uint8_t Extract(uint32_t pixel, uint32_t mask) const {
        if (bits == 0) return 0;
        const uint32_t value = (pixel & mask) >> shift;
        return static_cast<uint8_t>(bits >= 8 ? value >> (bits - 8)
                                              : value * 255 / ((1u << bits) - 1));
    }
};

Channel ChannelOf(uint32_t mask) {
    if (mask == 0) return {};
    return {std::countr_zero(mask), std::popcount(mask)};
}

// A window may vanish at any moment, so every request that can fail is
// checked and its error dropped, instead of reaching the event queue.
void Check(xcb_connection_t* c, xcb_void_cookie_t cookie) {
    std::free(xcb_request_check(c, cookie));
}

}  // namespace

struct XcbWindowSystem::Atoms {
    xcb_atom_t netWmName = XCB_ATOM_NONE;
    xcb_atom_t utf8String = XCB_ATOM_NONE;
    xcb_atom_t netActiveWindow = XCB_ATOM_NONE;
};

std::unique_ptr<XcbWindowSystem> XcbWindowSystem::Open(std::string& error) {
    if (auto* app = qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        if (auto* x11 = app->nativeInterface<QNativeInterface::QX11Application>()) {
            if (x11->connection() != nullptr) {
                return std::unique_ptr<XcbWindowSystem>(
                    new XcbWindowSystem(x11->connection(), false));
            }
        }
    }
    return Connect(nullptr, error);
}

std::unique_ptr<XcbWindowSystem> XcbWindowSystem::Connect(const char* display, std::string& error) {
    xcb_connection_t* connection = xcb_connect(display, nullptr);
    if (xcb_connection_has_error(connection)) {
        xcb_disconnect(connection);
        const char* name = display != nullptr ? display : std::getenv("DISPLAY");
        error = std::string("Cannot reach the X server ") +
                (name != nullptr ? name : "(DISPLAY unset)");
        return nullptr;
    }
    return std::unique_ptr<XcbWindowSystem>(new XcbWindowSystem(connection, true));
}

XcbWindowSystem::XcbWindowSystem(xcb_connection_t* connection, bool owned)
    : connection_(connection), owned_(owned), atoms_(std::make_unique<Atoms>()) {
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    root_ = screen->root;
    screenWidth_ = screen->width_in_pixels;
    screenHeight_ = screen->height_in_pixels;
    rootVisual_ = screen->root_visual;
    atoms_->netWmName = InternAtom(connection_, "_NET_WM_NAME");
    atoms_->utf8String = InternAtom(connection_, "UTF8_STRING");
    atoms_->netActiveWindow = InternAtom(connection_, "_NET_ACTIVE_WINDOW");
}

XcbWindowSystem::~XcbWindowSystem() {
    if (sharedSegment_ != 0) {
        Check(connection_, xcb_shm_detach_checked(connection_, sharedSegment_));
        shmdt(sharedPixels_);
    }
    if (owned_) xcb_disconnect(connection_);
}

bool XcbWindowSystem::AttachSharedMemory() {
    if (sharedMemoryTried_) return sharedSegment_ != 0;
    sharedMemoryTried_ = true;
    const xcb_query_extension_reply_t* extension = xcb_get_extension_data(connection_, &xcb_shm_id);
    if (extension == nullptr || !extension->present) return false;
    const std::size_t bytes = static_cast<std::size_t>(screenWidth_) * screenHeight_ * 4;
    const int id = shmget(IPC_PRIVATE, bytes, IPC_CREAT | 0600);
    if (id < 0) return false;
    void* pixels = shmat(id, nullptr, 0);
    const uint32_t segment = xcb_generate_id(connection_);
    auto* error =
        pixels == reinterpret_cast<void*>(-1)
            ? nullptr
            : xcb_request_check(connection_, xcb_shm_attach_checked(connection_, segment, id, 0));
    const bool attached = pixels != reinterpret_cast<void*>(-1) && error == nullptr;
    std::free(error);
    // Marked for removal now; it goes once both sides have let go of it.
    shmctl(id, IPC_RMID, nullptr);
    if (!attached) {
        if (pixels != reinterpret_cast<void*>(-1)) shmdt(pixels);
        return false;
    }
    sharedSegment_ = segment;
    sharedPixels_ = static_cast<uint8_t*>(pixels);
    return true;
}

QImage XcbWindowSystem::ReadScreen(int left, int top, int width, int height) {
    if (AttachSharedMemory()) {
        auto reply = Take(xcb_shm_get_image_reply(
            connection_,
            xcb_shm_get_image(connection_, root_, static_cast<int16_t>(left),
                              static_cast<int16_t>(top), static_cast<uint16_t>(width),
                              static_cast<uint16_t>(height), ~0u, XCB_IMAGE_FORMAT_Z_PIXMAP,
                              sharedSegment_, 0),
            nullptr));
        if (reply) return ConvertImage(sharedPixels_, width, height, reply->depth);
    }
    auto reply = Take(xcb_get_image_reply(
        connection_,
        xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, root_, static_cast<int16_t>(left),
                      static_cast<int16_t>(top), static_cast<uint16_t>(width),
                      static_cast<uint16_t>(height), ~0u),
        nullptr));
    if (!reply) return {};
    return ConvertImage(xcb_get_image_data(reply.get()), width, height, reply->depth);
}

bool XcbWindowSystem::QueryTree(WindowId window, WindowId& parent,
                                std::vector<WindowId>& children) {
    auto reply =
        Take(xcb_query_tree_reply(connection_, xcb_query_tree(connection_, window), nullptr));
    if (!reply) return false;
    parent = reply->parent;
    const xcb_window_t* list = xcb_query_tree_children(reply.get());
    children.assign(list, list + xcb_query_tree_children_length(reply.get()));
    return true;
}

WindowId XcbWindowSystem::DesktopWindow() {
    return root_;
}

WindowId XcbWindowSystem::FirstChild(WindowId window) {
    WindowId parent = 0;
    std::vector<WindowId> children;
    if (!QueryTree(window, parent, children) || children.empty()) return 0;
    return children.back();  // the server lists bottom to top
}

WindowId XcbWindowSystem::NextSibling(WindowId window) {
    WindowId parent = 0;
    std::vector<WindowId> children;
    if (!QueryTree(window, parent, children) || parent == 0) return 0;
    if (!QueryTree(parent, parent, children)) return 0;
    const auto it = std::find(children.begin(), children.end(), window);
    if (it == children.end() || it == children.begin()) return 0;
    return *(it - 1);
}

std::string XcbWindowSystem::ReadTextProperty(WindowId window, uint32_t property, uint32_t type) {
    auto reply = Take(xcb_get_property_reply(
        connection_, xcb_get_property(connection_, 0, window, property, type, 0, kPropertyLongs),
        nullptr));
    if (!reply || reply->format != 8) return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

std::string XcbWindowSystem::WindowText(WindowId window) {
    QString title =
        QString::fromStdString(ReadTextProperty(window, atoms_->netWmName, atoms_->utf8String));
    if (title.isEmpty()) {
        title = QString::fromLatin1(ReadTextProperty(window, XCB_ATOM_WM_NAME, XCB_ATOM_ANY));
    }
    return title.left(kTitleCharacters).toStdString();
}

std::string XcbWindowSystem::ClassName(WindowId window) {
    // WM_CLASS holds the instance name and the class name, each ended by a
    // zero byte; the class is the second.
    const std::string value = ReadTextProperty(window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING);
    const std::size_t end = value.find('\0');
    if (end == std::string::npos) return {};
    const std::string rest = value.substr(end + 1);
    return QString::fromLatin1(rest.c_str()).left(kTitleCharacters).toStdString();
}

std::optional<WindowRect> XcbWindowSystem::GetWindowRect(WindowId window) {
    // Both requests go out before either answer is awaited: one round trip.
    const xcb_get_geometry_cookie_t geometryCookie = xcb_get_geometry(connection_, window);
    const xcb_translate_coordinates_cookie_t placeCookie =
        xcb_translate_coordinates(connection_, window, root_, 0, 0);
    auto geometry = Take(xcb_get_geometry_reply(connection_, geometryCookie, nullptr));
    auto place = Take(xcb_translate_coordinates_reply(connection_, placeCookie, nullptr));
    if (!geometry || !place) return std::nullopt;
    const int border = geometry->border_width;
    return WindowRect{place->dst_x - border, place->dst_y - border, geometry->width + 2 * border,
                      geometry->height + 2 * border};
}

void XcbWindowSystem::MoveWindow(WindowId window, const WindowRect& rect) {
    const uint32_t values[] = {static_cast<uint32_t>(rect.left), static_cast<uint32_t>(rect.top),
                               static_cast<uint32_t>(std::max(rect.width, 1)),
                               static_cast<uint32_t>(std::max(rect.height, 1))};
    Check(connection_,
          xcb_configure_window_checked(connection_, window,
                                       XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y |
                                           XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                                       values));
}

ShowCommand XcbWindowSystem::GetShowCommand(WindowId window) {
    auto attributes = Take(xcb_get_window_attributes_reply(
        connection_, xcb_get_window_attributes(connection_, window), nullptr));
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE ? kShowNormal
                                                                         : kShowMinimised;
}

void XcbWindowSystem::SetShowCommand(WindowId window, ShowCommand command) {
    // Mapping a window is how a client takes it out of the iconic state.
    if (command == kShow || command == kShowNormal) {
        Check(connection_, xcb_map_window_checked(connection_, window));
    }
}

void XcbWindowSystem::BringWindowToTop(WindowId window) {
    const uint32_t above = XCB_STACK_MODE_ABOVE;
    Check(connection_,
          xcb_configure_window_checked(connection_, window, XCB_CONFIG_WINDOW_STACK_MODE, &above));
    // With no window manager the focus decides which window is active; with
    // one, the request below asks it to activate the window.
    // A window that is not viewable refuses the focus; that is no error here.
    Check(connection_, xcb_set_input_focus_checked(connection_, XCB_INPUT_FOCUS_POINTER_ROOT,
                                                   window, XCB_CURRENT_TIME));
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atoms_->netActiveWindow;
    message.data.data32[0] = 2;  // the request comes from a pager-like tool
    xcb_send_event(connection_, 0, root_,
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
    xcb_flush(connection_);
}

WindowId XcbWindowSystem::ForegroundWindow() {
    WindowId active = 0;
    const xcb_get_property_cookie_t propertyCookie =
        xcb_get_property(connection_, 0, root_, atoms_->netActiveWindow, XCB_ATOM_WINDOW, 0, 1);
    const xcb_get_input_focus_cookie_t focusCookie = xcb_get_input_focus(connection_);
    auto property = Take(xcb_get_property_reply(connection_, propertyCookie, nullptr));
    auto focus = Take(xcb_get_input_focus_reply(connection_, focusCookie, nullptr));
    if (property && property->format == 32 && xcb_get_property_value_length(property.get()) == 4) {
        std::memcpy(&active, xcb_get_property_value(property.get()), sizeof active);
    }
    if (active == 0) {
        if (!focus || focus->focus == XCB_NONE || focus->focus == XCB_INPUT_FOCUS_POINTER_ROOT) {
            return 0;
        }
        active = focus->focus;
    }
    // Climb to the window that stands on the desktop: the frame, when a
    // window manager has put one round the active window.
    WindowId window = active;
    std::vector<WindowId> children;
    while (window != root_) {
        WindowId parent = 0;
        if (!QueryTree(window, parent, children)) return 0;
        if (parent == root_) return window;
        window = parent;
    }
    return 0;
}

QImage XcbWindowSystem::CaptureWindow(WindowId window) {
    const std::optional<WindowRect> rect = GetWindowRect(window);
    if (!rect || rect->width <= 0 || rect->height <= 0) return {};
    QImage image(rect->width, rect->height, QImage::Format_RGB32);
    image.fill(Qt::black);

    // The screen's own pixels, as a copy from the window's device context
    // gives them; what lies off the screen stays black.
    const int left = std::max(rect->left, 0);
    const int top = std::max(rect->top, 0);
    const int right = std::min(rect->left + rect->width, screenWidth_);
    const int bottom = std::min(rect->top + rect->height, screenHeight_);
    if (right <= left || bottom <= top) return image;
    const QImage part = ReadScreen(left, top, right - left, bottom - top);
    if (part.isNull()) return {};
    for (int y = 0; y < part.height(); ++y) {
        std::memcpy(image.scanLine(top - rect->top + y) + 4 * (left - rect->left),
                    part.constScanLine(y), 4 * static_cast<std::size_t>(part.width()));
    }
    return image;
}

QImage XcbWindowSystem::ConvertImage(const uint8_t* data, int width, int height, int depth) {
    const xcb_setup_t* setup = xcb_get_setup(connection_);
    int bitsPerPixel = 0;
    int scanlinePad = 32;
    for (auto it = xcb_setup_pixmap_formats_iterator(setup); it.rem; xcb_format_next(&it)) {
        if (it.data->depth == depth) {
            bitsPerPixel = it.data->bits_per_pixel;
            scanlinePad = it.data->scanline_pad;
        }
    }
    const xcb_visualtype_t* visual = nullptr;
    for (auto d = xcb_screen_allowed_depths_iterator(xcb_setup_roots_iterator(setup).data); d.rem;
         xcb_depth_next(&d)) {
        for (auto v = xcb_depth_visuals_iterator(d.data); v.rem; xcb_visualtype_next(&v)) {
            if (v.data->visual_id == rootVisual_) visual = v.data;
        }
    }
    if (visual == nullptr || visual->_class != XCB_VISUAL_CLASS_TRUE_COLOR ||
        (bitsPerPixel != 16 && bitsPerPixel != 24 && bitsPerPixel != 32)) {
        return {};
    }
    const int bytesPerPixel = bitsPerPixel / 8;
    const int stride = (width * bitsPerPixel + scanlinePad - 1) / scanlinePad * scanlinePad / 8;
    const bool lsbFirst = setup->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST;
    const Channel red = ChannelOf(visual->red_mask);
    const Channel green = ChannelOf(visual->green_mask);
    const Channel blue = ChannelOf(visual->blue_mask);

    QImage image(width, height, QImage::Format_RGB32);
    // The usual 24-bit screen is already laid out as the image wants it.
    if (bitsPerPixel == 32 && lsbFirst && visual->red_mask == 0xFF0000 &&
        visual->green_mask == 0xFF00 && visual->blue_mask == 0xFF) {
        for (int y = 0; y < height; ++y) {
            const auto* source =
                reinterpret_cast<const uint32_t*>(data + static_cast<std::ptrdiff_t>(y) * stride);
            auto* target = reinterpret_cast<QRgb*>(image.scanLine(y));
            for (int x = 0; x < width; ++x) target[x] = source[x] | 0xFF000000u;
        }
        return image;
    }
    for (int y = 0; y < height; ++y) {
        const uint8_t* source = data + static_cast<std::ptrdiff_t>(y) * stride;
        auto* target = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < width; ++x, source += bytesPerPixel) {
            uint32_t pixel = 0;
            for (int b = 0; b < bytesPerPixel; ++b) {
                const int shift = 8 * (lsbFirst ? b : bytesPerPixel - 1 - b);
                pixel |= static_cast<uint32_t>(source[b]) << shift;
            }
            target[x] =
                qRgb(red.Extract(pixel, visual->red_mask), green.Extract(pixel, visual->green_mask),
                     blue.Extract(pixel, visual->blue_mask));
        }
    }
    return image;
}

void XcbWindowSystem::Sync() {
    std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
}

}  // namespace felthawk
