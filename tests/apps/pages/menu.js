import jQuery from "jquery";
import "jquery-ui/themes/base/all.css";

window.jQuery = jQuery; // where jQuery UI looks for it
await import("jquery-ui/dist/jquery-ui.js");

document.getElementById("page").innerHTML = `
    <ul id="menu" style="width: 150px">
        <li id="open"><div>Open</div></li>
        <li id="recent"><div>Recent</div>
            <ul style="width: 150px">
                <li id="first"><div>First</div></li>
                <li id="second"><div>Second</div></li>
            </ul>
        </li>
        <li id="close"><div>Close</div></li>
    </ul>`;
let chosen = "";
jQuery("#menu").menu({ select: (event, { item }) => (chosen = item.attr("id")) });

window.app = {
    active: () => jQuery(".ui-state-active").text().trim(),
    isOpen: () => jQuery("#second").is(":visible"),
    chosen: () => chosen,
};
