import { PasswordResponses } from "pdfjs-dist";
import { byId, onClick, onSubmit } from "./dom.js";

/** Asks for the password of an encrypted document, again and again until it fits or the user gives up. */
export class PasswordDialog {
    constructor() {
        this.dialog = byId("passwordDialog");
        this.input = byId("password");
        onSubmit(byId("passwordForm"), () => this.answer(this.input.value));
        onClick({ passwordCancel: () => this.answer(new Error("No password was given.")) });
        this.dialog.addEventListener("keydown", (event) => {
            if (event.key === "Escape") this.answer(new Error("No password was given."));
        });
    }

    /** Calls back with the password, or with an error when the user gives up. */
    ask(answer, reason) {
        this.callback = answer;
        const wrong = reason === PasswordResponses.INCORRECT_PASSWORD;
        byId("passwordText").textContent = wrong
            ? "This password is not the right one. Please try again."
            : "This document is protected. Please enter its password.";
        this.input.value = "";
        this.dialog.hidden = false;
        this.input.focus();
    }

    answer(password) {
        this.dialog.hidden = true;
        this.callback(password);
    }
}
