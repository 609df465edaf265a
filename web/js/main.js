// @ts-check
import "./card.js";
import "./list.js";
import "./topbar.js";
import "./panel.js";
import "./toasts.js";
import "./drawer.js";
import { loadIcons } from "./icons.js";
import { listenToKeys } from "./keys.js";
import { Page } from "./page.js";

loadIcons();
listenToKeys(new Page());
