#include <zelkon/common/keycodes_p.h>

namespace zelkon {

namespace {

struct KeyPair
{
    int qt;
    int code;
};

constexpr KeyPair keyTable[] = {
    {Qt::Key_Backspace, KeyBack},  {Qt::Key_Tab, KeyTab},       {Qt::Key_Backtab, KeyTab},
    {Qt::Key_Return, KeyReturn},   {Qt::Key_Enter, KeyReturn},  {Qt::Key_Shift, KeyShift},
    {Qt::Key_Control, KeyControl}, {Qt::Key_Alt, KeyMenu},      {Qt::Key_Escape, KeyEscape},
    {Qt::Key_Space, KeySpace},     {Qt::Key_PageUp, KeyPageUp}, {Qt::Key_PageDown, KeyPageDown},
    {Qt::Key_End, KeyEnd},         {Qt::Key_Home, KeyHome},     {Qt::Key_Left, KeyLeft},
    {Qt::Key_Up, KeyUp},           {Qt::Key_Right, KeyRight},   {Qt::Key_Down, KeyDown},
    {Qt::Key_Insert, KeyInsert},   {Qt::Key_Delete, KeyDelete}, {Qt::Key_Semicolon, 186},
    {Qt::Key_Equal, 187},          {Qt::Key_Comma, 188},        {Qt::Key_Minus, 189},
    {Qt::Key_Period, 190},         {Qt::Key_Slash, 191},        {Qt::Key_QuoteLeft, 192},
    {Qt::Key_BracketLeft, 219},    {Qt::Key_Backslash, 220},    {Qt::Key_BracketRight, 221},
    {Qt::Key_Apostrophe, 222},
};

// The letter (65 .. 90) whose place a key holds on a US keyboard, or 0. The platform's key codes
// of letters name places, not characters: under a layout whose letter keys type no Latin letter
// (Russian, Greek, ...) the T key still gives the code of T, so that letter shortcuts work
// whichever layout is active.
int letterByPlace(const QKeyEvent *event)
{
#if defined(Q_OS_WIN)
    // Windows' virtual keys already are these codes.
    const quint32 key = event->nativeVirtualKey();
    return key >= 'A' && key <= 'Z' ? int(key) : 0;
#else
#if defined(Q_OS_MACOS)
    // Virtual key codes of the places, from 0.
    static constexpr char places[] = "ASDFHGZXCV.BQWERYT.............OU.IP.LJ.K....NM";
    const qint64 index = qint64(event->nativeVirtualKey());
#else
    // Scan codes of the places, from 16; X11 and Wayland report them with 8 added.
    static constexpr char places[] = "QWERTYUIOP....ASDFGHJKL.....ZXCVBNM";
    const qint64 index = qint64(event->nativeScanCode()) - 8 - 16;
#endif
    if (index < 0 || index >= qint64(sizeof(places)) - 1 || places[index] == '.')
        return 0;
    return places[index];
#endif
}

} // namespace

int keyCode(const QKeyEvent *event)
{
    if (!event)
        return 0;
    const int key = event->key();
    if (event->modifiers().testFlag(Qt::KeypadModifier)) {
        if (key >= Qt::Key_0 && key <= Qt::Key_9)
            return KeyNumpad0 + (key - Qt::Key_0);
        switch (key) {
        case Qt::Key_Asterisk:
            return KeyMultiply;
        case Qt::Key_Plus:
            return KeyAdd;
        case Qt::Key_Minus:
            return KeySubtract;
        case Qt::Key_Period:
        case Qt::Key_Comma:
            return KeyDecimal;
        case Qt::Key_Slash:
            return KeyDivide;
        default:
            break;
        }
    }
    if ((key >= Qt::Key_0 && key <= Qt::Key_9) || (key >= Qt::Key_A && key <= Qt::Key_Z))
        return key; // Qt and the platform agree on digits and letters
    // A letter of another script: Qt names the key by the character it types.
    if (key > 0 && key < 0x110000 && QChar::isLetter(char32_t(key))) {
        if (const int letter = letterByPlace(event))
            return letter;
    }
    if (key >= Qt::Key_F1 && key <= Qt::Key_F12)
        return KeyF1 + (key - Qt::Key_F1);
    for (const KeyPair &pair : keyTable) {
        if (pair.qt == key)
            return pair.code;
    }
    return 0;
}

int keyAscii(const QKeyEvent *event)
{
    if (!event)
        return 0;
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return 13;
    case Qt::Key_Backspace:
        return 8;
    case Qt::Key_Escape:
        return 27;
    case Qt::Key_Tab:
        return 9;
    default:
        break;
    }
    const QString text = event->text();
    if (text.isEmpty())
        return 0;
    return text.at(0).unicode();
}

int qtKey(int code)
{
    if ((code >= Key0 && code <= Key0 + 9) || (code >= KeyA && code <= KeyA + 25))
        return code;
    if (code >= KeyF1 && code <= KeyF1 + 11)
        return Qt::Key_F1 + (code - KeyF1);
    for (const KeyPair &pair : keyTable) {
        if (pair.code == code)
            return pair.qt;
    }
    return Qt::Key_unknown;
}

qint16 shiftState(Qt::KeyboardModifiers modifiers)
{
    qint16 state = 0;
    if (modifiers.testFlag(Qt::ShiftModifier))
        state |= ShiftKey;
    if (modifiers.testFlag(Qt::ControlModifier))
        state |= CtrlKey;
    if (modifiers.testFlag(Qt::AltModifier))
        state |= AltKey;
    return state;
}

qint16 mouseButtonCode(Qt::MouseButtons buttons)
{
    qint16 code = 0;
    if (buttons.testFlag(Qt::LeftButton))
        code |= LeftButtonCode;
    if (buttons.testFlag(Qt::RightButton))
        code |= RightButtonCode;
    if (buttons.testFlag(Qt::MiddleButton))
        code |= MiddleButtonCode;
    return code;
}

MouseArgs mouseArgs(const QMouseEvent *event)
{
    MouseArgs args;
    if (!event)
        return args;
    args.Button = event->type() == QEvent::MouseMove ? mouseButtonCode(event->buttons())
                                                     : mouseButtonCode(event->button());
    args.Shift = shiftState(event->modifiers());
    args.X = float(event->position().x());
    args.Y = float(event->position().y());
    return args;
}

} // namespace zelkon
