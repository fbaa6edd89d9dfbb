import { createApp } from "vue";

const form = createApp({
    data: () => ({ search: "", fruit: "apple", count: 1, found: "nothing" }),
    methods: {
        find() {
            this.found = `${this.count} ${this.fruit} ${this.search}`;
        },
    },
    template: `
        <form @submit.prevent="find">
            <input id="search" v-model.trim="search">
            <select id="fruit" v-model="fruit">
                <option value="apple">Apple</option>
                <option value="banana">Banana</option>
            </select>
            <button id="more" type="button" @click="count++">{{ count }}</button>
        </form>
        <p id="found">{{ found }}</p>`,
}).mount("#page");

window.app = { search: () => form.search };
