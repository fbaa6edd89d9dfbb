/** Types of the messages from the agent to the plug-in. */
enum MessageType {
    FocusedInputFieldChanged = "zarvik.webview.focusedInputFieldChanged",
    PageTransparencyDetermined = "zarvik.webview.pageTransparencyDetermined",
    TitleChanged = "zarvik.webview.titleChanged",
    UrlChanged = "zarvik.webview.urlChanged",
}

export default MessageType;
