#include "State/FileOpening.h"

#include "Worker/Worker.h"

namespace vantrel {

QCoro::Task<FileOpening::Outcome> FileOpening::fetch(FilePreview::Request request) {
    m_isUnderWay = true;
    m_stop = {};
    const std::stop_token stop = m_stop.get_token();
    const std::function<void(int)> onPercent = [opening = QPointer(this)](int percent) {
        Background::post([opening, percent] {
            if (opening)
                opening->m_percent = percent;
        });
    };
    const auto local = co_await Background::run(this, &FilePreview::fetch, request, onPercent, stop);
    m_percent = 0;
    m_isUnderWay = false;
    Outcome outcome;
    if (local)
        outcome.path = *local;
    else
        outcome.reason = local.error();
    co_return stop.stop_requested() ? Outcome() : outcome;
}

} // namespace vantrel
