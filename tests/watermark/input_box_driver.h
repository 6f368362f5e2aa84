// Works the input box as a user does, from another thread.
#ifndef TESSARY_TESTS_WATERMARK_INPUT_BOX_DRIVER_H
#define TESSARY_TESTS_WATERMARK_INPUT_BOX_DRIVER_H

#include <gtest/gtest.h>
#include <windows.h>

#include <functional>
#include <string>
#include <thread>

namespace tsypr::test
{

inline bool Eventually(const std::function<bool()>& holds)
{
    for (int i = 0; i < 5000; ++i)
    {
        if (holds())
        {
            return true;
        }
        Sleep(1);
    }
    return false;
}

struct Box
{
    HWND window;
    HWND edit = FindWindowExW(window, nullptr, L"Edit", nullptr);
    HWND ok = FindWindowExW(window, nullptr, L"Button", nullptr);
    HWND cancel = FindWindowExW(window, ok, L"Button", nullptr);
    HWND prompt = FindWindowExW(window, nullptr, L"Static", nullptr);

    void Type(const std::wstring& text) const
    {
        SendMessageW(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
    }
    void Press(WPARAM key) const
    {
        PostMessageW(edit, WM_KEYDOWN, key, 0);
    }
    HWND Focus() const
    {
        GUITHREADINFO info = {};
        info.cbSize = sizeof(info);
        GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info);
        return info.hwndFocus;
    }
};

// While it lives, takes the steps as soon as the box is up. A box that the steps leave open is a failure and cancelled.
class BoxDriver
{
public:
    explicit BoxDriver(std::function<void(const Box&)> steps) : m_thread([steps = std::move(steps)] { Run(steps); }) {}
    BoxDriver(const BoxDriver&) = delete;
    BoxDriver& operator=(const BoxDriver&) = delete;
    ~BoxDriver()
    {
        m_thread.join();
    }

private:
    static void Run(const std::function<void(const Box&)>& steps)
    {
        HWND window = nullptr;
        const bool isUp = Eventually(
            [&window]
            {
                window = FindWindowW(L"ZarnInputBox", nullptr);
                return window != nullptr && IsWindowVisible(window);
            });
        ASSERT_TRUE(isUp);
        steps(Box{window});
        const bool closed = Eventually([window] { return !IsWindow(window); });
        EXPECT_TRUE(closed);
        if (!closed)
        {
            PostMessageW(window, WM_CLOSE, 0, 0);
        }
    }

    std::thread m_thread;
};

} // namespace tsypr::test

#endif
