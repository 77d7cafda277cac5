#include <algorithm>

#include "tools/gps-monitor/view/View.h"

namespace monitor {

namespace {

constexpr int kColumnWidth = 38;
constexpr int kKeyWidth = 7;
constexpr int kWidth = 2 * kColumnWidth + 2;

void drawFrame(Panel& panel, std::string_view title) {
    for (int y = 0; y < panel.height(); ++y) {
        panel.fillRow(y, Style::normal);
        panel.put(0, y, U'│', Style::rule);
        panel.put(panel.width() - 1, y, U'│', Style::rule);
    }
    for (int x = 0; x < panel.width(); ++x) {
        panel.put(x, 0, U'─', Style::rule);
        panel.put(x, panel.height() - 1, U'─', Style::rule);
    }
    panel.put(0, 0, U'┌', Style::rule);
    panel.put(panel.width() - 1, 0, U'┐', Style::rule);
    panel.put(0, panel.height() - 1, U'└', Style::rule);
    panel.put(panel.width() - 1, panel.height() - 1, U'┘', Style::rule);
    panel.text(3, 0, title, Style::title);
}

void drawKey(Panel& panel, int x, int y, const Key& key) {
    panel.text(x, y, key.name, Style::strong);
    x = panel.text(x + kKeyWidth, y, key.description);
    if (key.asksFirst) panel.text(x, y, " *", Style::warning);
}

}  // namespace

void drawHelp(Canvas& canvas) {
    const auto sending = std::count_if(kKeys.begin(), kKeys.end(), sends);
    const int rows = static_cast<int>(std::max(sending, std::ssize(kKeys) - sending));
    const int height = rows + 6;
    Panel panel(canvas, {std::max((canvas.width() - kWidth) / 2, 0), std::max((canvas.height() - height) / 2, 0),
                         std::min(kWidth, canvas.width()), std::min(height, canvas.height())});
    drawFrame(panel, " Keys ");
    panel.text(2, 2, "Screen", Style::label);
    panel.text(2 + kColumnWidth, 2, "Receiver", Style::label);
    int viewRow = 3;
    int receiverRow = 3;
    for (const Key& key : kKeys) {
        if (sends(key)) {
            drawKey(panel, 2 + kColumnWidth, receiverRow++, key);
        } else {
            drawKey(panel, 2, viewRow++, key);
        }
    }
    panel.text(2, rows + 4, "* asks first.  Any key closes this list.", Style::faint);
}

}  // namespace monitor
