#include "HostFramework/Messages.h"
#include "HostFramework/embedded/messages/Attention.h"

QantErrorMonitor::QantErrorMonitor(ErrorCallback callback) : callback_(callback) {}
QantErrorMonitor::~QantErrorMonitor() = default;

void QantErrorMonitor::Report(const ErrorText& message) {
  if (callback_) callback_(message.text.c_str(), message.kind);
}

void QantErrorMonitor::AttentionCheck(bool* attention) {
  *attention = embedded::AttentionRequested();
}

void QantErrorMonitor::SetContext(void* context) { context_ = context; }
void* QantErrorMonitor::GetContext() const { return context_; }
