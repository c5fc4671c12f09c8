// What the online services ask of the desktop: open a page, a file or an
// installer with the desktop's own handler, and end the program for an
// upgrade. Behind an interface so that tests can see the calls.
#pragma once

class QUrl;

namespace felthawk {

class IDesktop {
  public:
    virtual ~IDesktop() = default;
    // Hands `url` to the desktop; a failure is ignored by every caller.
    virtual bool OpenUrl(const QUrl& url) = 0;
    // Ends the program at once, so that an installer can replace it.
    virtual void EndProgram() = 0;
};

// QDesktopServices for the first, closing every window and exiting for the
// second.
class QtDesktop : public IDesktop {
  public:
    bool OpenUrl(const QUrl& url) override;
    void EndProgram() override;
};

}  // namespace felthawk
