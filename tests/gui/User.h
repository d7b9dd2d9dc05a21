// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_USER_H
#define STRANDVIEW_TESTS_USER_H

#include <functional>
#include <utility>
#include <vector>

#include <QTimer>

namespace strandview {

/// Does one thing after the other with the dialogs that come up, while they wait for their user.
class User
{
public:
    struct Step
    {
        std::function<bool()> isDue;
        std::function<void()> act;
    };

    explicit User(std::vector<Step> allSteps) : steps(std::move(allSteps))
    {
        timer.setSingleShot(true); // for steps that bring up another dialog
        QObject::connect(&timer, &QTimer::timeout, [this] { look(); });
        timer.start(20);
    }
    bool isDone() const { return next == steps.size(); }

private:
    void look()
    {
        timer.start(20);
        if (!isDone() && steps[next].isDue())
            steps[next++].act();
    }

    const std::vector<Step> steps;
    std::size_t next = 0;
    QTimer timer;
};

} // namespace strandview

#endif
