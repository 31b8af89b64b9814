#include "App/Window/MacTitleBar.h"

#include "Theme/AppTheme.h"

#include <QWindow>

#import <AppKit/AppKit.h>

namespace vantrel {

void makeTitleBarTransparent(QWindow *window) {
    NSWindow *native = reinterpret_cast<NSView *>(window->winId()).window;
    native.titlebarAppearsTransparent = YES;
    native.titleVisibility = NSWindowTitleHidden; // our band shows the title
    native.styleMask |= NSWindowStyleMaskTitled | NSWindowStyleMaskClosable | NSWindowStyleMaskMiniaturizable
                        | NSWindowStyleMaskResizable | NSWindowStyleMaskFullSizeContentView;
    const QColor color = AppTheme::titleBarNSColor(AppTheme::scheme());
    native.backgroundColor = [NSColor colorWithCalibratedRed:color.redF()
                                                       green:color.greenF()
                                                        blue:color.blueF()
                                                       alpha:1];
    native.opaque = YES;
    native.movable = YES;
    NSButton *zoom = [native standardWindowButton:NSWindowZoomButton];
    zoom.hidden = NO;
    zoom.enabled = YES;
}

} // namespace vantrel
