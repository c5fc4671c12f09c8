#include "capture/xcb_window_system.h"

#include <sys/ipc.h>
#include <sys/shm.h>
#include <xcb/shm.h>
#include <xcb/xcb.h>

#include <QGuiApplication>
#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace felthawk {
namespace {

// Titles are read into a buffer of 255 characters, the terminator included,
// so at most 254 characters of a title take part in the search.
constexpr int kTitleCharacters = 254;
constexpr uint32_t kPropertyLongs = 256;
// A window manager puts a window at most this many levels below the
// window that stands on the desktop (a frame, then a container).
constexpr int kFrameLevels = 3;
// Screens of fewer bits per pixel have a palette, which capture cannot read.
constexpr int kFewestReadableBits = 15;

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

// A window may vanish at any moment, so every request that can fail is
// checked and its error dropped, instead of reaching the event queue.
void Check(xcb_connection_t* c, xcb_void_cookie_t cookie) {
    std::free(xcb_request_check(c, cookie));
}

std::string PropertyText(const xcb_get_property_reply_t* reply) {
    if (reply == nullptr || reply->format != 8) return {};
    return {static_cast<const char*>(xcb_get_property_value(reply)),
            static_cast<std::size_t>(xcb_get_property_value_length(reply))};
}

}  // namespace

struct XcbWindowSystem::Atoms {
    xcb_atom_t netWmName = XCB_ATOM_NONE;
    xcb_atom_t utf8String = XCB_ATOM_NONE;
    xcb_atom_t netActiveWindow = XCB_ATOM_NONE;
    xcb_atom_t wmState = XCB_ATOM_NONE;
    xcb_atom_t netFrameExtents = XCB_ATOM_NONE;
    xcb_atom_t netMoveResizeWindow = XCB_ATOM_NONE;
    xcb_atom_t netSupported = XCB_ATOM_NONE;
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
    const xcb_setup_t* setup = xcb_get_setup(connection_);
    const xcb_screen_t* screen = xcb_setup_roots_iterator(setup).data;
    root_ = screen->root;
    screenWidth_ = screen->width_in_pixels;
    screenHeight_ = screen->height_in_pixels;
    rootDepth_ = screen->root_depth;

    for (auto it = xcb_setup_pixmap_formats_iterator(setup); it.rem; xcb_format_next(&it)) {
        if (it.data->depth == rootDepth_) {
            format_.bytesPerPixel = it.data->bits_per_pixel / 8;
            format_.scanlinePad = it.data->scanline_pad;
        }
    }
    format_.lsbFirst = setup->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST;
    for (auto d = xcb_screen_allowed_depths_iterator(screen); d.rem; xcb_depth_next(&d)) {
        for (auto v = xcb_depth_visuals_iterator(d.data); v.rem; xcb_visualtype_next(&v)) {
            if (v.data->visual_id != screen->root_visual) continue;
            trueColour_ = v.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR ||
                          v.data->_class == XCB_VISUAL_CLASS_DIRECT_COLOR;
            format_.redMask = v.data->red_mask;
            format_.greenMask = v.data->green_mask;
            format_.blueMask = v.data->blue_mask;
        }
    }

    atoms_->netWmName = InternAtom(connection_, "_NET_WM_NAME");
    atoms_->utf8String = InternAtom(connection_, "UTF8_STRING");
    atoms_->netActiveWindow = InternAtom(connection_, "_NET_ACTIVE_WINDOW");
    atoms_->wmState = InternAtom(connection_, "WM_STATE");
    atoms_->netFrameExtents = InternAtom(connection_, "_NET_FRAME_EXTENTS");
    atoms_->netMoveResizeWindow = InternAtom(connection_, "_NET_MOVERESIZE_WINDOW");
    atoms_->netSupported = InternAtom(connection_, "_NET_SUPPORTED");
}

XcbWindowSystem::~XcbWindowSystem() {
    if (sharedSegment_ != 0) {
        Check(connection_, xcb_shm_detach_checked(connection_, sharedSegment_));
        shmdt(sharedPixels_);
    }
    if (owned_) xcb_disconnect(connection_);
}

// ---- The window tree ---------------------------------------------------------

std::vector<std::vector<WindowId>> XcbWindowSystem::QueryChildren(
    const std::vector<WindowId>& windows) {
    std::vector<xcb_query_tree_cookie_t> cookies;
    cookies.reserve(windows.size());
    for (WindowId window : windows) cookies.push_back(xcb_query_tree(connection_, window));
    std::vector<std::vector<WindowId>> children(windows.size());
    for (std::size_t i = 0; i < cookies.size(); ++i) {
        auto reply = Take(xcb_query_tree_reply(connection_, cookies[i], nullptr));
        if (!reply) continue;
        const xcb_window_t* list = xcb_query_tree_children(reply.get());
        // The server lists bottom to top.
        children[i].assign(
            std::make_reverse_iterator(list + xcb_query_tree_children_length(reply.get())),
            std::make_reverse_iterator(list));
    }
    return children;
}

WindowId XcbWindowSystem::ParentOf(WindowId window) {
    auto reply =
        Take(xcb_query_tree_reply(connection_, xcb_query_tree(connection_, window), nullptr));
    return reply ? reply->parent : 0;
}

WindowId XcbWindowSystem::TopFrame(WindowId window) {
    while (window != 0 && window != root_) {
        const WindowId parent = ParentOf(window);
        if (parent == root_) return window;
        window = parent;
    }
    return 0;
}

std::vector<WindowId> XcbWindowSystem::ManagedTopLevels() {
    // A window that a window manager looks after carries WM_STATE; its
    // frame does not. Each level below the frames is searched at once.
    std::vector<WindowId> topLevels = QueryChildren({root_}).front();
    std::vector<std::vector<WindowId>> candidates;
    for (WindowId window : topLevels) candidates.push_back({window});
    std::vector<bool> resolved(topLevels.size(), false);
    for (int level = 0; level <= kFrameLevels; ++level) {
        std::vector<std::pair<std::size_t, WindowId>> asked;
        std::vector<xcb_get_property_cookie_t> cookies;
        for (std::size_t i = 0; i < topLevels.size(); ++i) {
            if (resolved[i]) continue;
            for (WindowId window : candidates[i]) {
                asked.emplace_back(i, window);
                cookies.push_back(
                    xcb_get_property(connection_, 0, window, atoms_->wmState, XCB_ATOM_ANY, 0, 0));
            }
        }
        if (asked.empty()) break;
        for (std::size_t k = 0; k < asked.size(); ++k) {
            auto reply = Take(xcb_get_property_reply(connection_, cookies[k], nullptr));
            const auto [i, window] = asked[k];
            if (reply && reply->type != XCB_ATOM_NONE && !resolved[i]) {
                topLevels[i] = window;
                resolved[i] = true;
            }
        }
        if (level == kFrameLevels) break;
        std::vector<WindowId> parents;
        std::vector<std::size_t> owners;
        for (const auto& [i, window] : asked) {
            if (resolved[i]) continue;
            parents.push_back(window);
            owners.push_back(i);
        }
        for (std::size_t i = 0; i < candidates.size(); ++i) candidates[i].clear();
        const std::vector<std::vector<WindowId>> children = QueryChildren(parents);
        for (std::size_t k = 0; k < parents.size(); ++k) {
            candidates[owners[k]].insert(candidates[owners[k]].end(), children[k].begin(),
                                         children[k].end());
        }
    }
    return topLevels;
}

void XcbWindowSystem::ReadTexts(const std::vector<WindowId>& windows) {
    struct Cookies {
        xcb_get_property_cookie_t netName, name, windowClass;
    };
    std::vector<Cookies> cookies;
    cookies.reserve(windows.size());
    for (WindowId window : windows) {
        cookies.push_back({xcb_get_property(connection_, 0, window, atoms_->netWmName,
                                            atoms_->utf8String, 0, kPropertyLongs),
                           xcb_get_property(connection_, 0, window, XCB_ATOM_WM_NAME, XCB_ATOM_ANY,
                                            0, kPropertyLongs),
                           xcb_get_property(connection_, 0, window, XCB_ATOM_WM_CLASS,
                                            XCB_ATOM_STRING, 0, kPropertyLongs)});
    }
    for (std::size_t i = 0; i < windows.size(); ++i) {
        auto netName = Take(xcb_get_property_reply(connection_, cookies[i].netName, nullptr));
        auto name = Take(xcb_get_property_reply(connection_, cookies[i].name, nullptr));
        auto windowClass =
            Take(xcb_get_property_reply(connection_, cookies[i].windowClass, nullptr));
        QString title = QString::fromStdString(PropertyText(netName.get()));
        if (title.isEmpty()) title = QString::fromLatin1(PropertyText(name.get()));
        // WM_CLASS holds the instance name and the class name, each ended
        // by a zero byte; the class is the second.
        const std::string classes = PropertyText(windowClass.get());
        const std::size_t end = classes.find('\0');
        const std::string className =
            end == std::string::npos ? std::string() : std::string(classes.c_str() + end + 1);
        texts_[windows[i]] = {title.left(kTitleCharacters).toStdString(),
                              QString::fromLatin1(className).left(kTitleCharacters).toStdString()};
    }
}

WindowId XcbWindowSystem::DesktopWindow() {
    return root_;
}

WindowId XcbWindowSystem::FirstChild(WindowId window) {
    if (window == root_) {
        // A new walk: the top-level windows, their children and all their
        // texts, read now.
        childrenOf_.clear();
        listedIn_.clear();
        texts_.clear();
        const std::vector<WindowId> topLevels = ManagedTopLevels();
        const std::vector<std::vector<WindowId>> children = QueryChildren(topLevels);
        std::vector<WindowId> all = topLevels;
        childrenOf_[root_] = topLevels;
        for (std::size_t i = 0; i < topLevels.size(); ++i) {
            childrenOf_[topLevels[i]] = children[i];
            all.insert(all.end(), children[i].begin(), children[i].end());
        }
        for (const auto& [parent, list] : childrenOf_) {
            for (WindowId child : list) listedIn_[child] = parent;
        }
        ReadTexts(all);
    }
    auto it = childrenOf_.find(window);
    if (it == childrenOf_.end()) {
        it = childrenOf_.emplace(window, QueryChildren({window}).front()).first;
        for (WindowId child : it->second) listedIn_[child] = window;
    }
    return it->second.empty() ? 0 : it->second.front();
}

WindowId XcbWindowSystem::NextSibling(WindowId window) {
    const auto parent = listedIn_.find(window);
    if (parent == listedIn_.end()) return 0;
    const std::vector<WindowId>& siblings = childrenOf_[parent->second];
    const auto it = std::find(siblings.begin(), siblings.end(), window);
    return it == siblings.end() || it + 1 == siblings.end() ? 0 : *(it + 1);
}

// The walk reads each window's title and class once; a text read ahead for
// it serves that one reading, and any later one asks the server afresh.
std::string XcbWindowSystem::WindowText(WindowId window) {
    auto it = texts_.find(window);
    if (it == texts_.end() || !it->second.title) {
        ReadTexts({window});
        it = texts_.find(window);
    }
    std::string title = std::move(*it->second.title);
    it->second.title.reset();
    if (!it->second.className) texts_.erase(it);
    return title;
}

std::string XcbWindowSystem::ClassName(WindowId window) {
    auto it = texts_.find(window);
    if (it == texts_.end() || !it->second.className) {
        ReadTexts({window});
        it = texts_.find(window);
    }
    std::string className = std::move(*it->second.className);
    it->second.className.reset();
    if (!it->second.title) texts_.erase(it);
    return className;
}

// ---- Places and frames --------------------------------------------------------

std::optional<WindowRect> XcbWindowSystem::GetWindowRect(WindowId window) {
    // Both requests go out before either answer is awaited: one round trip.
    const xcb_get_geometry_cookie_t geometryCookie = xcb_get_geometry(connection_, window);
    const xcb_translate_coordinates_cookie_t placeCookie =
        xcb_translate_coordinates(connection_, window, root_, 0, 0);
    auto geometry = Take(xcb_get_geometry_reply(connection_, geometryCookie, nullptr));
    auto place = Take(xcb_translate_coordinates_reply(connection_, placeCookie, nullptr));
    if (!geometry || !place) return std::nullopt;
    return WindowRect{place->dst_x, place->dst_y, geometry->width, geometry->height};
}

FrameExtents XcbWindowSystem::GetFrameExtents(WindowId window) {
    auto property = Take(xcb_get_property_reply(
        connection_,
        xcb_get_property(connection_, 0, window, atoms_->netFrameExtents, XCB_ATOM_CARDINAL, 0, 4),
        nullptr));
    if (property && property->format == 32 && xcb_get_property_value_length(property.get()) == 16) {
        const auto* sides = static_cast<const uint32_t*>(xcb_get_property_value(property.get()));
        return {static_cast<int>(sides[0]), static_cast<int>(sides[1]), static_cast<int>(sides[2]),
                static_cast<int>(sides[3])};
    }
    // A window manager that does not say: the frame is the window that
    // stands on the desktop, and the extents are what it has round ours.
    const WindowId frame = TopFrame(window);
    if (frame == 0 || frame == window) return {};
    auto geometry =
        Take(xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, frame), nullptr));
    const std::optional<WindowRect> content = GetWindowRect(window);
    if (!geometry || !content) return {};
    const int border = geometry->border_width;
    const int frameLeft = geometry->x;
    const int frameTop = geometry->y;
    const int frameRight = geometry->x + geometry->width + 2 * border;
    const int frameBottom = geometry->y + geometry->height + 2 * border;
    return {std::max(content->left - frameLeft, 0),
            std::max(frameRight - content->left - content->width, 0),
            std::max(content->top - frameTop, 0),
            std::max(frameBottom - content->top - content->height, 0)};
}

bool XcbWindowSystem::Supports(uint32_t atom) {
    auto reply = Take(xcb_get_property_reply(
        connection_,
        xcb_get_property(connection_, 0, root_, atoms_->netSupported, XCB_ATOM_ATOM, 0, 4096),
        nullptr));
    if (!reply || reply->format != 32) return false;
    const auto* atoms = static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.get()));
    const int count = xcb_get_property_value_length(reply.get()) / 4;
    return std::find(atoms, atoms + count, atom) != atoms + count;
}

void XcbWindowSystem::MoveFrame(WindowId window, int left, int top) {
    const WindowId frame = TopFrame(window);
    if (frame != 0 && frame != window && Supports(atoms_->netMoveResizeWindow)) {
        // Ask the window manager, with the frame's top left as the point
        // that is given, whatever gravity the window itself asks for.
        constexpr uint32_t kNorthWest = 1;
        constexpr uint32_t kXAndY = (1u << 8) | (1u << 9);
        constexpr uint32_t kFromATool = 2u << 12;
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window;
        message.type = atoms_->netMoveResizeWindow;
        message.data.data32[0] = kNorthWest | kXAndY | kFromATool;
        message.data.data32[1] = static_cast<uint32_t>(left);
        message.data.data32[2] = static_cast<uint32_t>(top);
        xcb_send_event(connection_, 0, root_,
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&message));
        xcb_flush(connection_);
        return;
    }
    // Without a window manager the window is its own frame; with one that
    // cannot be asked, the request goes through it, which places the frame
    // there for a window of the usual north-west gravity.
    const uint32_t values[] = {static_cast<uint32_t>(left), static_cast<uint32_t>(top)};
    Check(connection_, xcb_configure_window_checked(
                           connection_, window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, values));
}

WindowRect XcbWindowSystem::Screen() {
    return {0, 0, screenWidth_, screenHeight_};
}

std::string XcbWindowSystem::ScreenUnreadable() {
    if (trueColour_ && rootDepth_ >= kFewestReadableBits &&
        (format_.bytesPerPixel == 2 || format_.bytesPerPixel == 3 || format_.bytesPerPixel == 4)) {
        return {};
    }
    return "Capture cannot read this screen: it has " + std::to_string(rootDepth_) +
           " bits per pixel" + (trueColour_ ? "" : " and a colour palette") +
           ". Capture reads screens of 16 or 24 bits per pixel.";
}

// ---- Showing and raising --------------------------------------------------------

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
    // A window manager turns this into raising the frame.
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
    if (active != 0) return active;  // the window manager names the window itself
    if (!focus || focus->focus == XCB_NONE || focus->focus == XCB_INPUT_FOCUS_POINTER_ROOT) {
        return 0;
    }
    // The focus may lie on a child or on a frame: the window that stands
    // for it on the desktop, or the one its frame holds.
    const WindowId top = TopFrame(focus->focus);
    if (top == 0) return 0;
    std::vector<WindowId> candidates{top};
    for (int level = 0; level <= kFrameLevels && !candidates.empty(); ++level) {
        for (WindowId window : candidates) {
            auto state = Take(xcb_get_property_reply(
                connection_,
                xcb_get_property(connection_, 0, window, atoms_->wmState, XCB_ATOM_ANY, 0, 0),
                nullptr));
            if (state && state->type != XCB_ATOM_NONE) return window;
        }
        std::vector<WindowId> next;
        for (const std::vector<WindowId>& children : QueryChildren(candidates)) {
            next.insert(next.end(), children.begin(), children.end());
        }
        candidates = std::move(next);
    }
    return top;
}

// ---- Pixels ---------------------------------------------------------------------

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
    sharedBytes_ = bytes;
    return true;
}

ContentGrab XcbWindowSystem::GrabContent(WindowId window) {
    const std::optional<WindowRect> rect = GetWindowRect(window);
    if (!rect || rect->width <= 0 || rect->height <= 0 || !ScreenUnreadable().empty()) return {};
    // The part of the content that is on the screen; the rest reads black.
    const int left = std::max(rect->left, 0);
    const int top = std::max(rect->top, 0);
    const int right = std::min(rect->left + rect->width, screenWidth_);
    const int bottom = std::min(rect->top + rect->height, screenHeight_);
    const int width = std::max(right - left, 0);
    const int height = std::max(bottom - top, 0);
    const auto grab = [&](const uint8_t* bytes, std::size_t size) {
        return ContentGrab(rect->width, rect->height, left - rect->left, top - rect->top, width,
                           height, format_, std::vector<uint8_t>(bytes, bytes + size));
    };
    if (width == 0 || height == 0) return grab(nullptr, 0);
    const std::size_t size = static_cast<std::size_t>(format_.Stride(width)) * height;
    if (AttachSharedMemory() && size <= sharedBytes_) {
        auto reply = Take(xcb_shm_get_image_reply(
            connection_,
            xcb_shm_get_image(connection_, root_, static_cast<int16_t>(left),
                              static_cast<int16_t>(top), static_cast<uint16_t>(width),
                              static_cast<uint16_t>(height), ~0u, XCB_IMAGE_FORMAT_Z_PIXMAP,
                              sharedSegment_, 0),
            nullptr));
        if (reply) return grab(sharedPixels_, size);
    }
    auto reply = Take(xcb_get_image_reply(
        connection_,
        xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, root_, static_cast<int16_t>(left),
                      static_cast<int16_t>(top), static_cast<uint16_t>(width),
                      static_cast<uint16_t>(height), ~0u),
        nullptr));
    if (!reply) return {};
    return grab(xcb_get_image_data(reply.get()),
                std::min(size, static_cast<std::size_t>(xcb_get_image_data_length(reply.get()))));
}

void XcbWindowSystem::Sync() {
    std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
}

}  // namespace felthawk
