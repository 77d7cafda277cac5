#include "tools/gps-monitor/terminal/Terminal.h"

#define NCURSES_WIDECHAR 1
#include <curses.h>
#include <langinfo.h>
#include <locale.h>
#include <signal.h>
#include <string.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string>

namespace monitor {

namespace {

constexpr int kBackspace = 0x7F;
constexpr int kEscapeDelay = 25;  // ms until an escape character counts as a key

struct Look {
    short colour;
    attr_t attributes;
};

/** By Style. */
constexpr Look kLooks[] = {
    {-1, A_NORMAL},           {COLOR_CYAN, A_BOLD}, {COLOR_BLUE, A_NORMAL},
    {COLOR_CYAN, A_NORMAL},   {-1, A_BOLD},         {COLOR_GREEN, A_NORMAL},
    {COLOR_YELLOW, A_NORMAL}, {COLOR_RED, A_BOLD},  {-1, A_DIM},
};
static_assert(std::size(kLooks) == static_cast<std::size_t>(Style::faint) + 1);

void defineColours() {
    if (!has_colors()) return;
    start_color();
    const short background = use_default_colors() == OK ? -1 : COLOR_BLACK;
    for (short i = 0; i < static_cast<short>(std::size(kLooks)); ++i) {
        const short colour = kLooks[i].colour;
        init_pair(static_cast<short>(i + 1), colour < 0 && background >= 0 ? short{COLOR_WHITE} : colour, background);
    }
}

/** The ASCII replacement of a glyph that the locale's character set lacks. */
wchar_t asciiFor(char32_t glyph) {
    constexpr std::u32string_view kGlyphs = U"─│┌┐└┘├┤·•●°░▁▂▃▄▅▆▇█";
    constexpr std::wstring_view kStandIns = L"-|++++||.*@ :__ooooO#";
    static_assert(kGlyphs.size() == kStandIns.size());
    if (glyph < 0x80) return static_cast<wchar_t>(glyph);
    if (glyph >= 0x2800 && glyph < 0x2900) return L'*';  // braille: the track
    const std::size_t index = kGlyphs.find(glyph);
    return index == std::u32string_view::npos ? L'?' : kStandIns[index];
}

void endAtExit() {
    if (stdscr != nullptr && !isendwin()) endwin();
}

}  // namespace

std::unique_ptr<Terminal> Terminal::open() {
    if (!isatty(STDOUT_FILENO)) return nullptr;
    setlocale(LC_ALL, "");
    SCREEN* const screen = newterm(nullptr, stdout, stdin);
    if (screen == nullptr) return nullptr;
    if (tigetstr("cup") == nullptr) {  // the cursor cannot be moved: "dumb"
        reset_shell_mode();
        delscreen(screen);
        return nullptr;
    }
    static const bool isRegistered = std::atexit(&endAtExit) == 0;  // for an exit that does not unwind
    static_cast<void>(isRegistered);
    return std::unique_ptr<Terminal>(new Terminal());
}

Terminal::Terminal() : mShowsUnicode(strcmp(nl_langinfo(CODESET), "UTF-8") == 0) {
    cbreak();
    noecho();
    nonl();
    keypad(stdscr, TRUE);
    set_escdelay(kEscapeDelay);
    nodelay(stdscr, TRUE);
    curs_set(0);
    defineColours();
}

Terminal::~Terminal() {
    endAtExit();
}

int Terminal::width() const {
    return getmaxx(stdscr);
}

int Terminal::height() const {
    return getmaxy(stdscr);
}

void Terminal::resize() {
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_row > 0 && size.ws_col > 0)
        resizeterm(size.ws_row, size.ws_col);
}

void Terminal::show(const Canvas& canvas) {
    for (int y = 0; y < std::min(canvas.height(), height()); ++y) {
        for (int x = 0; x < std::min(canvas.width(), width()); ++x) {
            const Cell& cell = canvas.at(x, y);
            const auto look = static_cast<std::size_t>(cell.style);
            const wchar_t text[] = {mShowsUnicode ? static_cast<wchar_t>(cell.glyph) : asciiFor(cell.glyph), L'\0'};
            cchar_t shown;
            setcchar(&shown, text, kLooks[look].attributes, static_cast<short>(has_colors() ? look + 1 : 0), nullptr);
            mvadd_wch(y, x, &shown);
        }
    }
    refresh();
}

void Terminal::redraw() {
    clearok(stdscr, TRUE);
}

int Terminal::readKey() {
    int key = getch();
    while (key == KEY_RESIZE)  // no key: resizeterm() queues it
        key = getch();
    if (key == KEY_ENTER) return '\r';
    return key == KEY_BACKSPACE ? kBackspace : key;
}

void Terminal::suspend() {
    endwin();
    raise(SIGSTOP);
    resize();
    redraw();
}

}  // namespace monitor
