/** What kind of input field has the focus. */
enum FocusedInputFieldType {
    Text = "TEXT",
    None = "NONE",
}

export default FocusedInputFieldType;
