import noUiSlider from "nouislider";
import "nouislider/dist/nouislider.css";

const element = document.getElementById("page");
element.style.cssText = "width: 400px; margin: 50px";
const slider = noUiSlider.create(element, { start: [20, 80], connect: true, step: 1, range: { min: 0, max: 100 } });
const happened = [];
for (const event of ["start", "end"]) {
    slider.on(event, () => happened.push(event));
}

window.app = {
    values: () => slider.get(true).join(),
    happened: () => happened.join(),
};
