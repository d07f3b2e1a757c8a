#pragma once

#include <QByteArray>
#include <QFile>
#include <QObject>
#include <QProcess>
#include <QString>

struct TEncoderInput;

/// A process that encodes one image. GUI thread only.
///
/// Input and result are exchanged through files in memory, so that neither process waits for the
/// other one to read or write.
class TEncodingJob : public QObject
{
    Q_OBJECT

public:
    TEncodingJob();
    /// Ends the process.
    ~TEncodingJob() override;
    Q_DISABLE_COPY(TEncodingJob)

    /// Starts the process. Once only.
    /// @param program  path of quillet-encode.
    void Start(const TEncoderInput& input, const QString& program);

    bool Is_Running() const { return d_process.state() != QProcess::NotRunning; }

    /// Waits for the PNG; empty without a process, or if the process fails, is killed or is
    /// stopped. Notifies TWorkWatch.
    QByteArray Wait();

    /// Suspends the process.
    void Pause();
    void Resume();

signals:
    /// The process has ended, or could not be started. Perhaps emitted twice. Use a queued
    /// connection to delete the job.
    void Ended();

private:
    /// A file in memory that this process, and with it QProcess, can open by its path.
    class TMemoryFile : public QFile
    {
    public:
        TMemoryFile();
        QString Path() const;
    };

    void Send(int signal) const;
    bool Is_Stopped() const;

    TMemoryFile d_input;
    TMemoryFile d_output;
    QProcess d_process;
};
