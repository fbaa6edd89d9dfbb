/** Directions of the messages between the agents of a document and of its frames. */
enum IFramePostMessageDomain {
    IFrameBridgeDownstream = "zarvik.iframeBridgeDownstream",
    IFrameBridgeUpstream = "zarvik.iframeBridgeUpstream",
}

export default IFramePostMessageDomain;
