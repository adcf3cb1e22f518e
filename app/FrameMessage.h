#pragma once

class CMainFrame;

/// The road of a frame from the session's processing thread to the main window: a message that the thread sends and
/// waits for, so that the picture's buffer stays as it is while the window shows it.
///
/// There is one main window. It opens the road once it can take frames and closes it before it goes; closing sets every
/// waiting thread free, and from then on a message is dropped at once. So no thread waits for a window that waits for
/// it.
namespace frame_message {

/// Main thread. @param frame gets OnFrameReady for each message, on the main thread
void Open(CMainFrame& frame);
/// Main thread.
void Close();
/// Any thread but the main one. @return once the window has handled the frame, or at once where the road is closed
void Send(int bufferIndex);

}  // namespace frame_message

/// The session's frame callback: sends the message, then sleeps 10 milliseconds. The context plays no part.
void AcquisitionCallback(void* context, int bufferIndex);
