#pragma once

namespace cuewright {

// The model's source of "now", in seconds on a steady scale. Only differences matter
// (undo coalescing), so tests drive a ManualClock instead of sleeping.
class Clock {
public:
    virtual ~Clock() = default;
    virtual double now() const = 0;
};

// Monotonic time of the process.
class SystemClock final : public Clock {
public:
    double now() const override;
};

class ManualClock final : public Clock {
public:
    explicit ManualClock(double start = 0)
        : m_now(start)
    {
    }
    double now() const override { return m_now; }
    void setNow(double seconds) { m_now = seconds; }
    void advance(double seconds) { m_now += seconds; }

private:
    double m_now;
};

} // namespace cuewright
