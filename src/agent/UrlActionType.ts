/** How the page came to its URL. */
enum UrlActionType {
    Load = "LOAD",
    PushState = "PUSH_STATE",
    ReplaceState = "REPLACE_STATE",
    HashChange = "HASH_CHANGE",
}

export default UrlActionType;
