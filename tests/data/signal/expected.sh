# Prints every value that a signal should hold, found out in another way than the program's. TZ and LC_ALL are those of
# the program, AT is the moment of the record, USER_ID the stored identifier. What has no value is left out of signals.
local_time() { date -d "$AT" "+$1"; }
both() { echo "TelemetryDeck.$2=$3"; echo "$1=$3"; }
. /etc/os-release
language=${LC_ALL%%[_.]*}
locale=${LC_ALL%%.*}
region=${locale#"$language"}
model=$(cat /sys/devices/virtual/dmi/id/product_name 2>/dev/null)

echo "receivedAt=$(date -u -d "$AT" +%Y-%m-%dT%H:%M:%S%z)"
echo "appID=app"
echo "clientUser=$(printf %s "$USER_ID" | sha256sum | cut -d' ' -f1)"
echo "type=TelemetryDeck.Session.started"
echo "isTestMode=false"
both appVersion AppInfo.version 1.2
both buildNumber AppInfo.buildNumber 34
echo "TelemetryDeck.AppInfo.versionAndBuildNumber=1.2 (build 34)"
both telemetryClientVersion SDK.version 1.0.0
echo "TelemetryDeck.SDK.name=VantrelAnalytics"
echo "TelemetryDeck.SDK.nameAndVersion=VantrelAnalytics 1.0.0"
both architecture Device.architecture arm64
both modelName Device.modelName "${model:-unknown}"
both operatingSystem Device.operatingSystem macOS
both platform Device.platform macOS
both systemVersion Device.systemVersion "$ID $VERSION_ID"
both majorSystemVersion Device.systemMajorVersion "$ID $(echo "$VERSION_ID" | cut -d. -f1)"
both majorMinorSystemVersion Device.systemMajorMinorVersion "$ID $(echo "$VERSION_ID" | cut -d. -f1-2)"
echo "TelemetryDeck.Device.screenResolutionHeight=1080.5"
echo "TelemetryDeck.Device.screenResolutionWidth=1920"
echo "TelemetryDeck.Device.screenScaleFactor=2"
echo "TelemetryDeck.Device.timeZone=$(local_time UTC%:z)"
both isDebug RunContext.isDebug false
both isSimulator RunContext.isSimulator false
both targetEnvironment RunContext.targetEnvironment native
both appLanguage RunContext.language "$language"
both locale RunContext.locale "$locale"
both preferredLanguage UserPreference.language "$(echo "$locale" | tr _ -)"
both region UserPreference.region "${region#_}"
echo "TelemetryDeck.UserPreference.colorScheme=Dark"
echo "TelemetryDeck.UserPreference.layoutDirection=rightToLeft"
echo "TelemetryDeck.Calendar.dayOfMonth=$(local_time %-d)"
echo "TelemetryDeck.Calendar.dayOfWeek=$(local_time %u)"
echo "TelemetryDeck.Calendar.dayOfYear=$(local_time %-j)"
echo "TelemetryDeck.Calendar.weekOfYear=$(local_time %-V)"
echo "TelemetryDeck.Calendar.isWeekend=$(local_time %u | sed 's/[67]/true/; s/[1-5]/false/')"
echo "TelemetryDeck.Calendar.monthOfYear=$(local_time %-m)"
echo "TelemetryDeck.Calendar.quarterOfYear=$(local_time %q)"
echo "TelemetryDeck.Calendar.hourOfDay=$(local_time %-H)"
# As the earlier version has stored them: two sessions, four deleted ones, two days long ago.
echo "TelemetryDeck.Acquisition.firstSessionDate=2023-12-24"
echo "TelemetryDeck.Retention.averageSessionSeconds=30"
echo "TelemetryDeck.Retention.previousSessionSeconds=30"
echo "TelemetryDeck.Retention.totalSessionsCount=6"
echo "TelemetryDeck.Retention.distinctDaysUsed=3"
echo "TelemetryDeck.Retention.distinctDaysUsedLastMonth=1"
