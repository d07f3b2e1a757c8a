#pragma once

#include <QByteArray>

/// Collects what libraries print to standard error while it exists, and hides it from the user.
/// Captures can be nested; only the outermost one collects.
class TErrorCapture
{
public:
    TErrorCapture();
    ~TErrorCapture();
    Q_DISABLE_COPY(TErrorCapture)

    /// Returns what was printed since the last call. What exceeds the size of a pipe is lost.
    QByteArray Text() const;

private:
    int d_standard_error = -1; ///< duplicate of the real one; -1 if this object captures nothing
    int d_pipe = -1;           ///< end to read from
};
