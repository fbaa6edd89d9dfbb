export const byId = (id) => document.getElementById(id);

/** Creates an element with the given properties and children. */
export function create(tag, properties = {}, children = []) {
    const element = Object.assign(document.createElement(tag), properties);
    for (const child of children) element.appendChild(child);
    return element;
}

/** Runs the action for each click. The ids are those of buttons. */
export function onClick(actions) {
    for (const [id, action] of Object.entries(actions)) byId(id).addEventListener("click", action);
}

/** Runs the action when a form is sent, with the Enter key or a button. */
export function onSubmit(form, action) {
    form.addEventListener("submit", (event) => {
        event.preventDefault();
        action();
    });
}

export const setPressed = (button, pressed) => button.setAttribute("aria-pressed", String(pressed));
