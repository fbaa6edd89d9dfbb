import { useEffect, useState } from "react";
import { createRoot } from "react-dom/client";

const digits = (text) => text.replace(/\D/g, "").slice(0, 4);

/** A form whose fields show nothing but the component's state. */
function Form() {
    const [fields, setFields] = useState({ name: "", code: "", note: "", fruit: "apple", agreed: false });
    const [sent, setSent] = useState("nothing");
    const change = (values) => setFields({ ...fields, ...values });
    useEffect(() => {
        window.app = { field: (name) => fields[name], sent: () => sent };
    });
    const send = (event) => {
        event.preventDefault();
        setSent(Object.values(fields).join("; "));
    };
    return (
        <form onSubmit={send}>
            <input id="name" value={fields.name} onChange={(event) => change({ name: event.target.value })} />
            <input id="code" value={fields.code} onChange={(event) => change({ code: digits(event.target.value) })} />
            <input id="fixed" value="as it is" onChange={() => {}} />
            <textarea id="note" value={fields.note} onChange={(event) => change({ note: event.target.value })} />
            <select id="fruit" value={fields.fruit} onChange={(event) => change({ fruit: event.target.value })}>
                <option value="apple">Apple</option>
                <option value="banana">Banana</option>
                <option value="cherry">Cherry</option>
            </select>
            <input
                id="agreed"
                type="checkbox"
                checked={fields.agreed}
                onChange={(event) => change({ agreed: event.target.checked })}
            />
            <button id="send" disabled={!fields.agreed}>
                Send
            </button>
        </form>
    );
}

createRoot(document.getElementById("page")).render(<Form />);
