#include "App/System/MacReports.h"

#include <algorithm>
#include <cmath>

#import <AppKit/AppKit.h>
#import <UserNotifications/UserNotifications.h>

namespace vantrel {

namespace {

/// Its one notification is always called the same: what is shown anew takes the place of what is there.
NSString *const identifier = @"copies";

/// Nil for a program outside of a bundle, for which the Mac would end it.
UNUserNotificationCenter *center() {
    return NSBundle.mainBundle.bundleIdentifier ? UNUserNotificationCenter.currentNotificationCenter : nil;
}

/// The icon with a bar at its foot.
NSView *iconWithBar(double progress) {
    const NSSize size = NSApp.dockTile.size;
    constexpr CGFloat height = 16;
    NSImageView *icon = [[NSImageView alloc] initWithFrame:NSMakeRect(0, 0, size.width, size.height)];
    icon.image = NSApp.applicationIconImage;
    NSProgressIndicator *bar =
        [[NSProgressIndicator alloc] initWithFrame:NSMakeRect(0, 0, size.width, height)];
    bar.indeterminate = NO;
    bar.minValue = 0;
    bar.maxValue = 1;
    bar.doubleValue = progress;
    [icon addSubview:bar];
    return icon;
}

} // namespace

Notification::Notification(const SessionBus &, QObject *parent) : QObject(parent) {}

Notification::~Notification() {
    withdraw();
}

void Notification::show(const QString &heading, const QString &detail) {
    UNUserNotificationCenter *notifications = center();
    UNMutableNotificationContent *content = [[UNMutableNotificationContent alloc] init];
    content.title = heading.toNSString();
    content.body = detail.toNSString();
    UNNotificationRequest *request = [UNNotificationRequest requestWithIdentifier:identifier
                                                                          content:content
                                                                          trigger:nil];
    [notifications requestAuthorizationWithOptions:UNAuthorizationOptionAlert
                                 completionHandler:^(BOOL isGranted, NSError *) {
                                   if (isGranted)
                                       [notifications addNotificationRequest:request
                                                       withCompletionHandler:nil];
                                 }];
}

void Notification::withdraw() {
    [center() removePendingNotificationRequestsWithIdentifiers:@[ identifier ]];
    [center() removeDeliveredNotificationsWithIdentifiers:@[ identifier ]];
}

LauncherEntry::LauncherEntry(const SessionBus &, QObject *parent) : QObject(parent) {}

LauncherEntry::~LauncherEntry() {
    show({});
}

void LauncherEntry::show(const Look &look) {
    Look wanted = look;
    if (wanted.progress)
        wanted.progress = std::floor(std::clamp(*wanted.progress, 0.0, 1.0) * 100) / 100;
    if (wanted == m_shown)
        return;
    if (wanted.isUrgent && !m_shown.isUrgent)
        [NSApp requestUserAttention:NSInformationalRequest];
    if (wanted.progress != m_shown.progress) {
        NSApp.dockTile.contentView = wanted.progress ? iconWithBar(*wanted.progress) : nil;
        [NSApp.dockTile display];
    }
    m_shown = wanted;
}

} // namespace vantrel
