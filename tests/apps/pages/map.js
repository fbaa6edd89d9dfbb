import L from "leaflet";
import "leaflet/dist/leaflet.css";

const element = document.getElementById("page");
element.style.cssText = "width: 600px; height: 400px; background: white";
const map = L.map(element, { inertia: false, zoomAnimation: false, fadeAnimation: false });
map.setView([0, 0], 3);
L.rectangle(
    [
        [-10, -10],
        [10, 10],
    ],
    { stroke: false, fillColor: "rgb(255, 0, 0)", fillOpacity: 1, renderer: L.canvas() },
).addTo(map);
const island = L.circleMarker([30, 30], { radius: 12 }).bindPopup("An island").addTo(map);

window.app = {
    zoom: () => map.getZoom(),
    /** The centre in pixels of zoom level 3. */
    centre() {
        const { x, y } = map.project(map.getCenter(), 3).subtract(map.project([0, 0], 3)).round();
        return `${x} ${y}`;
    },
    islandPoint() {
        const { x, y } = map.latLngToContainerPoint(island.getLatLng());
        return `${Math.round(x)} ${Math.round(y)}`;
    },
    popup: () => document.querySelector(".leaflet-popup-content")?.textContent ?? "none",
};
